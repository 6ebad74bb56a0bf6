#include "keymouse/x11/X11ButtonMap.h"

#include <xcb/xcb.h>

#include <cstdlib>

namespace kel
{

void X11ButtonMap::load(xcb_connection_t *connection)
{
    xcb_get_pointer_mapping_reply_t *reply =
        xcb_get_pointer_mapping_reply(connection, xcb_get_pointer_mapping(connection), nullptr);
    if (!reply)
        return;
    const std::uint8_t *map = xcb_get_pointer_mapping_map(reply);
    m_map.assign(map, map + xcb_get_pointer_mapping_map_length(reply));
    std::free(reply);
}

int X11ButtonMap::logicalButton(std::uint8_t button) const
{
    return button >= 1 && button <= m_map.size() ? m_map[button - 1u] : button;
}

} // namespace kel
