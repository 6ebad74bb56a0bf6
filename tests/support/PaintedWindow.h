#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>

#include <memory>

/// A window on top of all others that shows known pixels, without anything of the product or of Qt in between. Physical
/// pixels. What is painted is on the screen when the call returns. To be used by the thread that made it.
class PaintedWindow
{
public:
    /// `display`: of which X server, by default the one that $DISPLAY names.
    PaintedWindow(const QRect &rect, QRgb color, const QByteArray &display = {});
    ~PaintedWindow();
    PaintedWindow(const PaintedWindow &) = delete;
    PaintedWindow &operator=(const PaintedWindow &) = delete;

    void paint(QRgb color);
    void paint(const QImage &image);

private:
    struct Private;
    const std::unique_ptr<Private> d;
};
