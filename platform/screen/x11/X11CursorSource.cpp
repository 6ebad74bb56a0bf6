#include "screen/x11/X11CursorSource.h"

#include "logging/PlatformLog.h"
#include "screen/CursorShape.h"

#include <QImage>
#include <QtDebug>

#include <algorithm>

namespace kel
{

namespace
{

// An animated pointer has one shape per frame; more shapes than this come from a program that keeps creating new ones.
constexpr int kMaxShapes = 64;

/// A client may have sent colors greater than their alpha, which is invalid for premultiplied pixels.
QRgb premultiplied(uint32_t pixel)
{
    const int alpha = qAlpha(pixel);
    return qRgba(std::min(qRed(pixel), alpha), std::min(qGreen(pixel), alpha), std::min(qBlue(pixel), alpha), alpha);
}

KelCursorShape shapeOf(const xcb_xfixes_get_cursor_image_reply_t *reply, double ratio)
{
    const uint32_t *pixels = xcb_xfixes_get_cursor_image_cursor_image(reply);
    const int count = xcb_xfixes_get_cursor_image_cursor_image_length(reply);
    QImage image(reply->width, reply->height, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull() || count != reply->width * reply->height)
        return {};
    std::transform(pixels, pixels + count, reinterpret_cast<QRgb *>(image.bits()), premultiplied);
    return cursorShape(image, {reply->xhot, reply->yhot}, ratio);
}

} // namespace

X11CursorSource::X11CursorSource(const ScreenGeometry &screen)
    : m_screen(screen)
{
    if (!subscribeToShapes()) {
        m_cursorNotifyEvent = 0;
        qCWarning(logScreen, "[KelCursorPixmap] the pointer cannot be captured: %s",
                  m_connection.isOpen() ? "the X server has no XFIXES extension"
                                        : "there is no connection to an X server");
    }
}

bool X11CursorSource::subscribeToShapes()
{
    if (!m_connection.isOpen() || !m_connection.screen())
        return false;
    const auto *extension = xcb_get_extension_data(m_connection, &xcb_xfixes_id);
    if (!extension || !extension->present)
        return false;
    // The server accepts other requests of an extension only after the version request.
    if (!m_connection.await<xcb_xfixes_query_version_reply_t>(xcb_xfixes_query_version(m_connection, 2, 0)))
        return false;
    m_cursorNotifyEvent = extension->first_event + XCB_XFIXES_CURSOR_NOTIFY;
    return m_connection.check(xcb_xfixes_select_cursor_input_checked(m_connection, m_connection.screen()->root,
                                                                     XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR));
}

KelCursorPixmap X11CursorSource::read()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_cursorNotifyEvent == 0)
        return {};
    if (m_connection.isStalled())
        return snapshotWithoutReply();
    const auto pointer =
        m_connection.await<xcb_query_pointer_reply_t>(xcb_query_pointer(m_connection, m_connection.screen()->root));
    if (!pointer)
        return snapshotWithoutReply();
    processNotifications(); // those received before the reply
    const KelCursorShape *shape = currentShape();
    if (!shape)
        return snapshotWithoutReply();
    const bool isVisible = pointer->same_screen && !shape->type.isEmpty();
    m_last =
        isVisible ? KelCursorPixmap(m_screen.toLogical({pointer->root_x, pointer->root_y}), *shape) : KelCursorPixmap();
    return m_last;
}

void X11CursorSource::processNotifications()
{
    while (const auto event = m_connection.nextEvent()) {
        if ((event->response_type & 0x7f) == m_cursorNotifyEvent)
            m_serial = reinterpret_cast<const xcb_xfixes_cursor_notify_event_t *>(event.get())->cursor_serial;
    }
}

/// Null when the server does not respond.
const KelCursorShape *X11CursorSource::currentShape()
{
    const auto known = m_shapes.constFind(m_serial);
    if (known != m_shapes.constEnd())
        return &*known;
    const auto reply =
        m_connection.await<xcb_xfixes_get_cursor_image_reply_t>(xcb_xfixes_get_cursor_image(m_connection));
    if (!reply && (m_connection.isStalled() || !m_connection.isOpen()))
        return nullptr;
    if (m_shapes.size() >= kMaxShapes)
        m_shapes.clear();
    if (reply)
        m_serial = reply->cursor_serial;
    // The server returns an error when there is no pointer, until a notification with another serial.
    return &*m_shapes.insert(m_serial, reply ? shapeOf(reply.get(), m_screen.ratio) : KelCursorShape());
}

/// The last snapshot while the server does not respond; no cursor once it is gone.
KelCursorPixmap X11CursorSource::snapshotWithoutReply()
{
    if (m_connection.isOpen())
        return m_last;
    qCWarning(logScreen,
              "[KelCursorPixmap] the pointer can no longer be captured: the connection to the X server is lost");
    m_cursorNotifyEvent = 0;
    return {};
}

} // namespace kel
