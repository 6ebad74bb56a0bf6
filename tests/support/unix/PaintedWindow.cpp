#include "support/PaintedWindow.h"

#include "support/x11/X11Painter.h"

class PaintedWindow::Private
{
public:
    Private(const QRect &rect, QRgb color, const QByteArray &display)
        : painter(display)
        , size(rect.size())
        , window(painter.createWindow(rect, color))
    {
        painter.sync();
    }

    X11Painter painter;
    const QSize size;
    const xcb_window_t window;
};

PaintedWindow::PaintedWindow(const QRect &rect, QRgb color, const QByteArray &display)
    : d(std::make_unique<Private>(rect, color, display))
{
}

PaintedWindow::~PaintedWindow() = default;

void PaintedWindow::paint(QRgb color)
{
    d->painter.fill(d->window, QRect(QPoint(), d->size), color);
    d->painter.sync();
}

void PaintedWindow::paint(const QImage &image)
{
    d->painter.put(d->window, QPoint(), image);
    d->painter.sync();
}
