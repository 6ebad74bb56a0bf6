#pragma once

#include <QByteArray>
#include <QImage>
#include <QRect>

#include <xcb/xcb.h>

/// An X11 client of its own that puts known pixels on the screen and reads them back, without anything of the product
/// in between. Physical pixels. What it sends is done when sync() returns.
class X11Painter
{
public:
    /// Connects to the display of that name (":7"), by default the one that $DISPLAY names.
    explicit X11Painter(const QByteArray &display = {});
    ~X11Painter();
    X11Painter(const X11Painter &) = delete;
    X11Painter &operator=(const X11Painter &) = delete;

    bool isConnected() const { return m_screen != nullptr; }
    QSize screenSize() const;
    xcb_window_t root() const { return m_screen->root; }

    /// A window on top of all others, unseen by window managers, filled with one colour.
    xcb_window_t createWindow(const QRect &rect, QRgb color);
    void moveWindow(xcb_window_t window, const QPoint &position);
    void destroyWindow(xcb_window_t window);

    /// Draws into a window; into the root window only what no window covers is seen.
    /// Only fill() finds the right colour on screens that have not 8 bit a channel.
    void fill(xcb_window_t window, const QRect &rect, QRgb color);
    void put(xcb_window_t window, const QPoint &position, const QImage &image);

    /// Sends what was drawn and waits until the server has done it and has told all who want to know.
    void sync();

    /// What the screen shows now, in Format_ARGB32_Premultiplied, opaque; the rectangle must lie on the screen.
    QImage grab(const QRect &rect);

private:
    uint32_t pixelValue(QRgb color) const;

    xcb_connection_t *m_connection;
    xcb_screen_t *m_screen = nullptr;
    xcb_gcontext_t m_gc = XCB_NONE;
};
