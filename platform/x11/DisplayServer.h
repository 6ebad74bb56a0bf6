#pragma once

namespace kel
{

enum class DisplayServer {
    None,
    X11,
    Wayland,
    XWayland ///< there is nothing but XWayland: a Wayland session that this process cannot reach
};

/// The display server of the desktop that the environment names. In a Wayland session it is X11 if $DISPLAY names any
/// server but XWayland, as programs inside of that server inherit $WAYLAND_DISPLAY. Waits for the X server.
DisplayServer displayServer();

} // namespace kel
