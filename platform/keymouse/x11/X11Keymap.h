#pragma once

#include "keymouse/xkb/XkbKeyboard.h"

#include <QtGlobal>

#include <cstdint>

struct xcb_connection_t;

namespace kel
{

/// Maps keycodes to Qt::Key values with the current keymap of the display.
class X11Keymap
{
public:
    /// Subscribes to keymap changes on `connection`, which belongs to the caller. Without XKB in the server, every key
    /// is 0.
    explicit X11Keymap(xcb_connection_t *connection);

    /// True for the type of the events that announce a keymap change.
    bool isKeymapEvent(int eventType) const { return m_firstEvent != 0 && eventType == m_firstEvent; }

    /// Marks the keymap as outdated; it is read again before its next use.
    void invalidate() { m_isStale = true; }

    /// The Qt::Key of a keycode with the modifiers and group of a core event; 0 for a key without meaning. A release
    /// reports the same key as its press, even if a modifier or the keymap has changed in between.
    int qtKey(std::uint8_t keycode, bool isPressed, std::uint16_t state);

private:
    Q_DISABLE_COPY(X11Keymap)

    bool selectEvents();
    void load();

    xcb_connection_t *m_connection;
    std::uint8_t m_firstEvent = 0; // 0: no XKB
    bool m_isStale = true;         // the keymap is read when the next key is translated
    XkbContext m_context;
    XkbKeyboard m_keyboard;
};

} // namespace kel
