#pragma once

#include "keymouse/xkb/XkbKeyboard.h"

#include <QByteArray>
#include <QtGlobal>

#include <cstdint>
#include <memory>

struct wl_display;
struct wl_keyboard;
struct wl_registry;
struct wl_seat;

namespace kel
{

/// Follows the keymap of the Wayland session, which its compositor sends to every client.
class WaylandKeymap
{
public:
    /// Connects to $WAYLAND_DISPLAY. Waits a second at most for the keymap.
    WaylandKeymap();
    ~WaylandKeymap();

    /// Readable when process() has something to do; -1 without a compositor.
    int descriptor() const;

    /// Reads what the compositor has sent, without waiting.
    void process();

    /// The keymap, if there is a new one since the last call; otherwise empty.
    QByteArray takeKeymap();

private:
    struct Listeners;
    Q_DISABLE_COPY(WaylandKeymap)

    void disconnect();

    wl_display *m_display;
    wl_registry *m_registry = nullptr;
    wl_seat *m_seat = nullptr;
    wl_keyboard *m_keyboard = nullptr;
    int m_roundTrips = 0;
    QByteArray m_keymap;
};

} // namespace kel
