#include "keymouse/x11/X11Keymap.h"

#include "logging/PlatformLog.h"

#include <QDebug>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>

#define explicit explicit_ // <xcb/xkb.h> uses the keyword as a field name
#include <xcb/xkb.h>
#undef explicit

#include <cstdlib>
#include <utility>

namespace kel
{

namespace
{

constexpr std::uint16_t kModifierMask = 0xff;

int groupOf(std::uint16_t state)
{
    return (state >> 13) & 3;
}

} // namespace

X11Keymap::X11Keymap(xcb_connection_t *connection)
    : m_connection(connection)
    , m_context(xkb_context_new(XKB_CONTEXT_NO_DEFAULT_INCLUDES))
{
    if (!m_context ||
        !xkb_x11_setup_xkb_extension(m_connection, XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                     XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &m_firstEvent, nullptr) ||
        !selectEvents()) {
        m_firstEvent = 0;
        qCWarning(logInput, "[KelKeyMouseHook] the X server has no usable XKB extension: keys cannot be identified");
    }
}

bool X11Keymap::selectEvents()
{
    const std::uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    const std::uint16_t parts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP |
                                XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS | XCB_XKB_MAP_PART_KEY_ACTIONS |
                                XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_generic_error_t *error =
        xcb_request_check(m_connection, xcb_xkb_select_events_checked(m_connection, XCB_XKB_ID_USE_CORE_KBD, events, 0,
                                                                      events, parts, parts, nullptr));
    std::free(error);
    return !error && !xcb_connection_has_error(m_connection);
}

void X11Keymap::load()
{
    m_isStale = false;
    const std::int32_t device = xkb_x11_get_core_keyboard_device_id(m_connection);
    XkbKeymap keymap(device < 0 ? nullptr
                                : xkb_x11_keymap_new_from_device(m_context.get(), m_connection, device,
                                                                 XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (keymap) // otherwise a change is going on: the previous keymap is used until the next notification
        m_keyboard.setKeymap(std::move(keymap));
}

int X11Keymap::qtKey(std::uint8_t keycode, bool isPressed, std::uint16_t state)
{
    if (m_isStale && m_firstEvent != 0)
        load();
    if (m_keyboard.state())
        xkb_state_update_mask(m_keyboard.state(), state & kModifierMask, 0, 0, 0, 0,
                              xkb_layout_index_t(groupOf(state)));
    return m_keyboard.qtKey(keycode, isPressed);
}

} // namespace kel
