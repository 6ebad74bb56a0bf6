#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>

#include <xcb/xcb.h>

/// A separate X11 client that draws known pixels on the screen and reads them back, independent of the product.
/// Coordinates are physical pixels. Requests have taken effect when sync() returns.
class X11Painter
{
public:
    /// Connects to the given display (":7"), by default $DISPLAY.
    explicit X11Painter(const QByteArray &display = {});
    ~X11Painter();
    X11Painter(const X11Painter &) = delete;
    X11Painter &operator=(const X11Painter &) = delete;

    bool isConnected() const { return m_screen != nullptr; }
    QSize screenSize() const;
    xcb_window_t root() const { return m_screen->root; }

    /// A topmost window without window management, filled with one color.
    xcb_window_t createWindow(const QRect &rect, QRgb color);
    void moveWindow(xcb_window_t window, const QPoint &position);
    void destroyWindow(xcb_window_t window);

    /// Draws into a window. Drawing into the root window is visible only where no window covers it.
    /// On screens without 8 bits per channel only fill() draws the right color.
    void fill(xcb_window_t window, const QRect &rect, QRgb color);
    void put(xcb_window_t window, const QPoint &position, const QImage &image);

    /// Waits until the server has executed all requests and notified all clients.
    void sync();

    /// The current screen content in Format_ARGB32_Premultiplied, opaque. The rectangle must be inside the screen.
    QImage grab(const QRect &rect);

private:
    uint32_t pixelValue(QRgb color) const;

    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen = nullptr;
    xcb_gcontext_t m_gc = XCB_NONE;
};
