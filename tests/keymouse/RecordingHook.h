#pragma once

#include "keymouse/KelKeyMouseHook.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

/// Records each event as one line of text.
class RecordingHook : public KelKeyMouseHook
{
public:
    ~RecordingHook() override { setHookType(0); }

    QStringList lines() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }
    /// Waits for `count` lines or a timeout, and returns and clears all lines.
    QStringList take(int count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_added.wait_for(lock, std::chrono::seconds(10), [&] { return m_lines.size() >= count; });
        return std::exchange(m_lines, {});
    }
    QStringList take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return std::exchange(m_lines, {});
    }

    std::function<void()> onEvent; ///< called in every callback, before the line is recorded

protected:
    bool OnKeyboardEvent(KelKeyboardEvent event) override
    {
        return add(QString("key %1 %2").arg(event.key, 0, 16).arg(event.state));
    }
    bool OnMouseEvent(KelMouseEvent event) override
    {
        return add(QString("button %1 %2").arg(event.button).arg(event.state) + place(event));
    }
    bool OnMouseWheelEvent(KelWheelEvent event) override
    {
        return add(QString("wheel %1").arg(event.delta) + place(event));
    }

private:
    template <typename Event>
    static QString place(const Event &event)
    {
        const QPoint position = event.globalPosition;
        return event.hasPosition ? QString(" at %1,%2").arg(position.x()).arg(position.y()) : QString(" nowhere");
    }

    bool add(const QString &line)
    {
        if (onEvent)
            onEvent();
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines.append(line);
        m_added.notify_all();
        return false;
    }

    mutable std::mutex m_mutex;
    std::condition_variable m_added;
    QStringList m_lines;
};
