#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>

/// The composed frames of a recording such as people export. Every pixel is a function of the frame number.
class ExportScene
{
public:
    static constexpr int Fps = 25;
    static constexpr int Frames = 100;
    static QSize size() { return {1280, 720}; }

    /// "code": an editor scrolls, with rests; "form": somebody fills in a form; "photos": a page with photographs
    /// scrolls; "drag": a window is dragged over a gradient.
    static QStringList names();

    /// One of the names.
    explicit ExportScene(const QString &name);

    QImage frame(int number) const { return m_paint(number); }

private:
    std::function<QImage(int)> m_paint;
};
