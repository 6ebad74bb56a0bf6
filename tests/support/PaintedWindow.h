#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>

#include <memory>

/// A topmost window that shows known pixels, independent of the product and of Qt. Coordinates are physical pixels.
/// Painting is on the screen when the call returns. Use it on the thread that created it.
class PaintedWindow
{
public:
    /// `display`: the X server, by default that of $DISPLAY.
    PaintedWindow(const QRect &rect, QRgb color, const QByteArray &display = {});
    ~PaintedWindow();
    PaintedWindow(const PaintedWindow &) = delete;
    PaintedWindow &operator=(const PaintedWindow &) = delete;

    void paint(QRgb color);
    void paint(const QImage &image);

private:
    class Private;
    const std::unique_ptr<Private> d;
};
