#include "keymouse/portal/PortalShortcutGrabber.h"
#include "keymouse/x11/X11ShortcutGrabber.h"
#include "x11/DisplayServer.h"

namespace kel
{

std::unique_ptr<GlobalShortcutGrabber> GlobalShortcutGrabber::create()
{
    const DisplayServer server = displayServer();
    if (server == DisplayServer::Wayland || server == DisplayServer::XWayland)
        return std::make_unique<PortalShortcutGrabber>();
    return std::make_unique<X11ShortcutGrabber>();
}

} // namespace kel
