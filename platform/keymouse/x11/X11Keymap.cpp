#include "keymouse/x11/X11Keymap.h"

#include "logging/PlatformLog.h"

#include <QDebug>

#include <private/qxkbcommon_p.h>
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

void X11Keymap::Unref::operator()(xkb_context *context) const
{
    xkb_context_unref(context);
}

void X11Keymap::Unref::operator()(xkb_keymap *keymap) const
{
    xkb_keymap_unref(keymap);
}

void X11Keymap::Unref::operator()(xkb_state *state) const
{
    xkb_state_unref(state);
}

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

X11Keymap::~X11Keymap() = default;

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
    std::unique_ptr<xkb_keymap, Unref> keymap(
        device < 0
            ? nullptr
            : xkb_x11_keymap_new_from_device(m_context.get(), m_connection, device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (!keymap)
        return; // fails during a change: the previous keymap is used until the next notification
    m_state.reset(xkb_state_new(keymap.get()));
    m_keymap = std::move(keymap);
}

int X11Keymap::qtKey(std::uint8_t keycode, bool isPressed, std::uint16_t state)
{
    int &pressedAs = m_pressedAs[keycode];
    if (!isPressed && pressedAs != 0)
        return std::exchange(pressedAs, 0);
    const int key = translate(keycode, state);
    pressedAs = isPressed ? key : 0;
    return key;
}

int X11Keymap::translate(std::uint8_t keycode, std::uint16_t state)
{
    if (m_isStale && m_firstEvent != 0)
        load();
    if (!m_state)
        return 0;
    xkb_state_update_mask(m_state.get(), state & kModifierMask, 0, 0, 0, 0, xkb_layout_index_t(groupOf(state)));
    const xkb_keysym_t symbol = symbolOf(keycode);
    if (symbol == XKB_KEY_Super_L || symbol == XKB_KEY_Super_R)
        return Qt::Key_Meta; // the name of the Windows key on every system
    Qt::KeyboardModifiers modifiers = QXkbCommon::modifiers(m_state.get());
    if (QXkbCommon::isKeypad(symbol))
        modifiers |= Qt::KeypadModifier;
    return QXkbCommon::keysymToQtKey(symbol, modifiers, m_state.get(), keycode);
}

/// The keysym in the current state. Keymaps have Meta on the shifted level of the Alt keys; Shift does not turn them
/// into another key.
std::uint32_t X11Keymap::symbolOf(std::uint8_t keycode) const
{
    const xkb_keysym_t symbol = xkb_state_key_get_one_sym(m_state.get(), keycode);
    if (symbol != XKB_KEY_Meta_L && symbol != XKB_KEY_Meta_R)
        return symbol;
    const xkb_keysym_t *unshifted = nullptr;
    const int count = xkb_keymap_key_get_syms_by_level(m_keymap.get(), keycode,
                                                       xkb_state_key_get_layout(m_state.get(), keycode), 0, &unshifted);
    return count == 1 && (*unshifted == XKB_KEY_Alt_L || *unshifted == XKB_KEY_Alt_R) ? *unshifted : symbol;
}

} // namespace kel
