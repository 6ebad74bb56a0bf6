#pragma once

#include "support/PaintedWindow.h"

#include <QColor>
#include <QRect>

#include <atomic>
#include <chrono>
#include <thread>

/// A window that shows a sequence of solid colors, so that a captured frame reveals when it was captured.
class ColorScene
{
public:
    static constexpr int kSteps = 64;

    explicit ColorScene(const QRect &rect, const QByteArray &display = {})
        : m_thread([this, rect, display] { run(rect, display); })
    {
        while (!m_isShown)
            std::this_thread::yield();
    }

    ~ColorScene()
    {
        m_isEnding = true;
        m_thread.join();
    }

    static QColor color(int step) { return QColor::fromRgb(4 * (step % kSteps), 255 - 4 * (step % kSteps), 128); }

    /// The step that has this color; -1 for any other color.
    static int step(const QColor &seen)
    {
        for (int i = 0; i < kSteps; ++i) {
            const QColor known = color(i);
            if (qAbs(known.red() - seen.red()) < 2 && qAbs(known.green() - seen.green()) < 2 &&
                qAbs(known.blue() - seen.blue()) < 2)
                return i;
        }
        return -1;
    }

private:
    void run(const QRect &rect, const QByteArray &display)
    {
        PaintedWindow window(rect, color(0).rgb(), display);
        m_isShown = true;
        for (int i = 1; !m_isEnding; ++i) {
            window.paint(color(i).rgb());
            std::this_thread::sleep_for(std::chrono::milliseconds(40)); // time between color changes
        }
    }

    std::atomic<bool> m_isShown{false};
    std::atomic<bool> m_isEnding{false};
    std::thread m_thread;
};
