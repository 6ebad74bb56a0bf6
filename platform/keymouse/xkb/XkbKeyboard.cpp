#include "keymouse/xkb/XkbKeyboard.h"

#include <private/qxkbcommon_p.h>

#include <utility>

namespace kel
{

void XkbUnref::operator()(xkb_context *context) const
{
    xkb_context_unref(context);
}

void XkbUnref::operator()(xkb_keymap *keymap) const
{
    xkb_keymap_unref(keymap);
}

void XkbUnref::operator()(xkb_state *state) const
{
    xkb_state_unref(state);
}

void XkbKeyboard::setKeymap(XkbKeymap keymap)
{
    m_state.reset(xkb_state_new(keymap.get()));
    m_keymap = std::move(keymap);
}

bool XkbKeyboard::repeats(std::uint32_t keycode) const
{
    return m_keymap && xkb_keymap_key_repeats(m_keymap.get(), keycode);
}

int XkbKeyboard::qtKey(std::uint32_t keycode, bool isPressed)
{
    const auto held = m_pressedAs.find(keycode);
    if (!isPressed && held != m_pressedAs.end()) {
        const int key = held->second;
        m_pressedAs.erase(held);
        return key;
    }
    const int key = m_state ? translate(keycode) : 0;
    if (isPressed && key != 0)
        m_pressedAs[keycode] = key;
    return key;
}

int XkbKeyboard::translate(std::uint32_t keycode) const
{
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
std::uint32_t XkbKeyboard::symbolOf(std::uint32_t keycode) const
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
