#include "support/PaintedWindow.h"

#include <windows.h>

class PaintedWindow::Private
{
public:
    /// Processes pending messages, which also makes the system show what was drawn.
    void settle() const
    {
        GdiFlush();
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
    }

    HWND window;
    QSize size;
};

PaintedWindow::PaintedWindow(const QRect &rect, QRgb color, const QByteArray &)
    : d(new Private{CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, L"STATIC", L"",
                                    WS_POPUP | WS_VISIBLE, rect.x(), rect.y(), rect.width(), rect.height(), nullptr,
                                    nullptr, nullptr, nullptr),
                    rect.size()})
{
    d->settle();
    paint(color);
}

PaintedWindow::~PaintedWindow()
{
    DestroyWindow(d->window);
}

void PaintedWindow::paint(QRgb color)
{
    QImage image(d->size, QImage::Format_RGB32);
    image.fill(color);
    paint(image);
}

void PaintedWindow::paint(const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = pixels.width();
    info.bmiHeader.biHeight = -pixels.height(); // top row first
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    HDC context = GetDC(d->window);
    SetDIBitsToDevice(context, 0, 0, DWORD(pixels.width()), DWORD(pixels.height()), 0, 0, 0, UINT(pixels.height()),
                      pixels.constBits(), &info, DIB_RGB_COLORS);
    ReleaseDC(d->window, context);
    d->settle();
}
