#pragma once

#include "keymouse/x11/X11ButtonMap.h"
#include "keymouse/x11/X11Keymap.h"

struct xcb_connection_t;

namespace kel
{

struct X11InputEvent;
class KeyMouseEventSink;

/// Translates recorded events with the current keymap and button map of the display.
class X11InputMapper
{
public:
    /// Receives change notifications on `connection`, which belongs to the caller.
    explicit X11InputMapper(xcb_connection_t *connection);

    /// Applies every change that happened before this call. Notifications arrive on another connection than the
    /// recorded events and may be delayed; this makes a round trip to the server (0.1 ms), and repeats it while there
    /// are notifications.
    void update();

    /// Applies the changes of all notifications received so far. False when there were none.
    bool processNotifications();

    /// Translates the event and delivers it; events without a meaning in Qt are dropped.
    void deliver(const X11InputEvent &event, KeyMouseEventSink &sink);

private:
    xcb_connection_t *m_connection;
    X11Keymap m_keymap;
    X11ButtonMap m_buttons;
};

} // namespace kel
