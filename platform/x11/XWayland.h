#pragma once

#include <QString>

#include <xcb/xcb.h>

namespace kel
{

/// Whether the X server is XWayland, which Wayland sessions run for X11 programs. It shows only their windows: its
/// screen is black elsewhere, and its pointer, clicks and keys are those over its own windows. The environment does not
/// tell, as any other X server may run inside a Wayland session. Waits for the server; one thread at a time.
bool isXWayland(xcb_connection_t *connection);

/// Why nothing can be recorded through XWayland and what to do, in English.
QString xWaylandError();

} // namespace kel
