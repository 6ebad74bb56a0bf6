#pragma once

#include "keymouse/x11/X11ButtonMap.h"
#include "keymouse/x11/X11Keymap.h"

struct xcb_connection_t;

namespace kel
{

struct X11InputEvent;
class KeyMouseEventSink;

/// Says what recorded events mean: with the display's keymap and the order of the mouse buttons, as they are now.
class X11InputMapper
{
public:
    /// Listens for changes on `connection`, which belongs to the caller.
    explicit X11InputMapper(xcb_connection_t *connection);

    /// Takes notice of every change that happened before this call. Changes are announced on another connection than
    /// the recorded events and may come later than they: so this asks the server for a sign of life (0.1 ms), and again
    /// while there is news.
    void update();

    /// Takes notice of the changes that have been announced so far. False when the connection had nothing to say.
    bool takeAnnouncements();

    /// Hands the event over in terms of Qt; events without meaning are dropped.
    void deliver(const X11InputEvent &event, KeyMouseEventSink &sink);

private:
    xcb_connection_t *m_connection;
    X11Keymap m_keymap;
    X11ButtonMap m_buttons;
};

} // namespace kel
