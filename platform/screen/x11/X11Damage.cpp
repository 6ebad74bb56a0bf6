#include "screen/x11/X11Damage.h"

#include <QVector>

namespace kel
{

X11Damage::X11Damage(XcbConnection &connection)
    : m_connection(connection)
{
    const auto *damage = xcb_get_extension_data(connection, &xcb_damage_id);
    const auto *xfixes = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (!damage || !damage->present || !xfixes || !xfixes->present)
        return;

    // The server accepts other requests of an extension only after the version request.
    const auto damageVersion = xcb_damage_query_version(connection, 1, 1);
    const auto xfixesVersion = xcb_xfixes_query_version(connection, 2, 0);
    const bool known = bool(connection.await<xcb_damage_query_version_reply_t>(damageVersion)) &
                       bool(connection.await<xcb_xfixes_query_version_reply_t>(xfixesVersion));
    if (!known)
        return;

    m_firstEvent = damage->first_event;
    m_region = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, m_region, 0, nullptr);
    m_damage = xcb_generate_id(connection);
    if (!connection.check(xcb_damage_create_checked(connection, m_damage, connection.screen()->root,
                                                    XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY)))
        m_damage = XCB_NONE;
}

bool X11Damage::isNotify(const xcb_generic_event_t &event) const
{
    return isAvailable() && (event.response_type & 0x7f) == m_firstEvent + XCB_DAMAGE_NOTIFY;
}

std::optional<QRegion> X11Damage::take()
{
    xcb_damage_subtract(m_connection, m_damage, XCB_NONE, m_region);
    const auto reply =
        m_connection.await<xcb_xfixes_fetch_region_reply_t>(xcb_xfixes_fetch_region(m_connection, m_region));
    if (!reply)
        return std::nullopt;

    const xcb_rectangle_t *from = xcb_xfixes_fetch_region_rectangles(reply.get());
    QVector<QRect> rects(xcb_xfixes_fetch_region_rectangles_length(reply.get()));
    for (QRect &rect : rects) {
        rect = {from->x, from->y, from->width, from->height};
        ++from;
    }
    QRegion region;
    region.setRects(rects.constData(), rects.size()); // both use the same order of rectangles
    return region;
}

void X11Damage::clear()
{
    if (isAvailable())
        xcb_damage_subtract(m_connection, m_damage, XCB_NONE, XCB_NONE);
}

} // namespace kel
