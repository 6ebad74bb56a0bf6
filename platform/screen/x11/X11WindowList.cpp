#include "screen/KelWindowList.h"

#include "geometry/ScreenGeometry.h"
#include "screen/x11/XcbConnection.h"

#include <string_view>
#include <vector>

using namespace kel;

namespace
{

xcb_atom_t atom(XcbConnection &connection, std::string_view name)
{
    const auto reply = connection.await<xcb_intern_atom_reply_t>(
        xcb_intern_atom(connection, 1, std::uint16_t(name.size()), name.data()));
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

/// The margins of the shadow of a client-side window frame, which is not visually part of the window.
QMargins shadow(XcbConnection &connection, xcb_window_t window, xcb_atom_t property)
{
    if (property == XCB_ATOM_NONE)
        return {};
    const auto reply = connection.await<xcb_get_property_reply_t>(
        xcb_get_property(connection, 0, window, property, XCB_ATOM_CARDINAL, 0, 4));
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) != 16)
        return {};
    const auto *const sides = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
    return {int(sides[0]), int(sides[2]), int(sides[1]), int(sides[3])};
}

std::vector<xcb_window_t> children(XcbConnection &connection, xcb_window_t window)
{
    const auto reply = connection.await<xcb_query_tree_reply_t>(xcb_query_tree(connection, window));
    if (!reply)
        return {};
    const xcb_window_t *const first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

} // namespace

QVector<QRect> KelWindowList::windowRects()
{
    XcbConnection connection;
    if (!connection.isOpen() || !connection.screen())
        return {};
    const xcb_atom_t frameExtents = atom(connection, "_GTK_FRAME_EXTENTS");
    const std::vector<xcb_window_t> windows = children(connection, connection.screen()->root);
    QVector<QRect> rects;
    for (auto window = windows.rbegin(); window != windows.rend() && !connection.isStalled(); ++window) {
        const auto attributes =
            connection.await<xcb_get_window_attributes_reply_t>(xcb_get_window_attributes(connection, *window));
        if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
            attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            continue;
        const auto geometry = connection.await<xcb_get_geometry_reply_t>(xcb_get_geometry(connection, *window));
        if (!geometry)
            continue;
        const int border = 2 * geometry->border_width;
        QRect rect(geometry->x, geometry->y, geometry->width + border, geometry->height + border);
        // The property is on the program's own window, which may be a child of the window manager's frame.
        QMargins margins = shadow(connection, *window, frameExtents);
        if (margins.isNull() && frameExtents != XCB_ATOM_NONE) {
            for (const xcb_window_t child : children(connection, *window))
                margins += shadow(connection, child, frameExtents);
        }
        rect = rect.marginsRemoved(margins);
        if (rect.width() >= kMinimumSide && rect.height() >= kMinimumSide) {
            const QRect logical = logicalRect(rect);
            if (!logical.isEmpty())
                rects.append(logical);
        }
    }
    return rects;
}
