#include "screen/NativeScreenBackend.h"

#include "screen/portal/PortalScreenBackend.h"
#include "screen/wayland/ScreencopyBackend.h"
#include "screen/x11/X11ScreenBackend.h"
#include "x11/DisplayServer.h"

#include <QGuiApplication>

namespace kel
{

namespace
{

/// The user's choice of Qt's platform counts as well: areas are in the coordinates of its screens.
bool isOnWayland()
{
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland")) ||
           displayServer() == DisplayServer::Wayland;
}

} // namespace

std::unique_ptr<KelScreenBackend> createNativeScreenBackend()
{
    // The compositor itself first: it asks nobody.
    if (isOnWayland() && ScreencopyBackend::isAvailable())
        return std::make_unique<ScreencopyBackend>();
    if (isOnWayland()) {
        auto portal = std::make_unique<PortalScreenBackend>();
        if (portal->errorString().isEmpty())
            return portal;
    }
    return std::make_unique<X11ScreenBackend>();
}

} // namespace kel
