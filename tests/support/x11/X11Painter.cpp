#include "support/x11/X11Painter.h"

#include <cstdlib>

X11Painter::X11Painter(const QByteArray &display)
    : m_connection(xcb_connect(display.isEmpty() ? nullptr : display.constData(), nullptr))
{
    if (xcb_connection_has_error(m_connection))
        return;
    m_screen = xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data;
    m_gc = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, m_gc, m_screen->root, 0, nullptr);
}

uint32_t X11Painter::pixelValue(QRgb color) const
{
    if (m_screen->root_depth == 24)
        return color & 0xffffff;
    const auto cookie = xcb_alloc_color(m_connection, m_screen->default_colormap, uint16_t(qRed(color) * 0x101),
                                        uint16_t(qGreen(color) * 0x101), uint16_t(qBlue(color) * 0x101));
    xcb_alloc_color_reply_t *reply = xcb_alloc_color_reply(m_connection, cookie, nullptr);
    const uint32_t value = reply ? reply->pixel : 0;
    std::free(reply);
    return value;
}

X11Painter::~X11Painter()
{
    xcb_disconnect(m_connection);
}

QSize X11Painter::screenSize() const
{
    const auto cookie = xcb_get_geometry(m_connection, m_screen->root);
    xcb_get_geometry_reply_t *reply = xcb_get_geometry_reply(m_connection, cookie, nullptr);
    const QSize size = reply ? QSize(reply->width, reply->height) : QSize();
    std::free(reply);
    return size;
}

xcb_window_t X11Painter::createWindow(const QRect &rect, QRgb color)
{
    const xcb_window_t window = xcb_generate_id(m_connection);
    const uint32_t values[] = {color & 0xffffff, 1};
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_screen->root, int16_t(rect.x()), int16_t(rect.y()),
                      uint16_t(rect.width()), uint16_t(rect.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      m_screen->root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    xcb_map_window(m_connection, window);
    return window;
}

void X11Painter::moveWindow(xcb_window_t window, const QPoint &position)
{
    const uint32_t values[] = {uint32_t(position.x()), uint32_t(position.y())};
    xcb_configure_window(m_connection, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, values);
}

void X11Painter::destroyWindow(xcb_window_t window)
{
    xcb_destroy_window(m_connection, window);
}

void X11Painter::fill(xcb_window_t window, const QRect &rect, QRgb color)
{
    const uint32_t foreground = pixelValue(color);
    xcb_change_gc(m_connection, m_gc, XCB_GC_FOREGROUND, &foreground);
    const xcb_rectangle_t area = {int16_t(rect.x()), int16_t(rect.y()), uint16_t(rect.width()),
                                  uint16_t(rect.height())};
    xcb_poly_fill_rectangle(m_connection, window, m_gc, 1, &area);
}

void X11Painter::put(xcb_window_t window, const QPoint &position, const QImage &image)
{
    const QImage pixels = image.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < pixels.height(); ++y) { // line by line, because the length of a request is limited
        xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, m_gc, uint16_t(pixels.width()), 1,
                      int16_t(position.x()), int16_t(position.y() + y), 0, m_screen->root_depth,
                      uint32_t(pixels.bytesPerLine()), pixels.constScanLine(y));
    }
}

void X11Painter::sync()
{
    // The server flushes its output to all clients before it reads the next request.
    for (int i = 0; i < 2; ++i)
        std::free(xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

QImage X11Painter::grab(const QRect &rect)
{
    const auto cookie = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_screen->root, int16_t(rect.x()),
                                      int16_t(rect.y()), uint16_t(rect.width()), uint16_t(rect.height()), ~0u);
    xcb_get_image_reply_t *reply = xcb_get_image_reply(m_connection, cookie, nullptr);
    if (!reply)
        return {};
    QImage image(rect.size(), QImage::Format_ARGB32_Premultiplied);
    const auto *from = reinterpret_cast<const QRgb *>(xcb_get_image_data(reply));
    for (int y = 0; y < image.height(); ++y) {
        auto *to = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            to[x] = *from++ | 0xff000000u;
    }
    std::free(reply);
    return image;
}
