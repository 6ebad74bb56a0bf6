#include "x11/DisplayServer.h"

#include "x11/XWayland.h"

#include <QtGlobal>

#include <memory>

namespace kel
{

DisplayServer displayServer()
{
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(nullptr, nullptr),
                                                                                  &xcb_disconnect);
    const bool hasX11 = !xcb_connection_has_error(connection.get());
    if (hasX11 && !isXWayland(connection.get()))
        return DisplayServer::X11;
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return DisplayServer::Wayland;
    return hasX11 ? DisplayServer::XWayland : DisplayServer::None;
}

} // namespace kel
