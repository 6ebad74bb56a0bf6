#pragma once

#include <QImage>
#include <QString>
#include <QStringList>

#include <functional>

/// The composed frames of a typical recording. Every pixel is a function of the frame number.
class ExportScene
{
public:
    static constexpr int kFps = 25;
    static constexpr int kFrames = 100;
    static QSize size() { return {1280, 720}; }

    /// "code": an editor scrolls, with pauses; "form": a form is filled in; "photos": a page of photographs scrolls;
    /// "drag": a window is dragged over a gradient.
    static QStringList names();

    /// `name`: one of names().
    explicit ExportScene(const QString &name);

    QImage frame(int number) const { return m_paint(number); }

private:
    std::function<QImage(int)> m_paint;
};
