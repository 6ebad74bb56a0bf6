#include "screen/x11/X11ScreenBackend.h"

#include "geometry/ScreenGeometry.h"
#include "screen/CaptureRect.h"
#include "screen/FailedScreenStreamer.h"
#include "screen/x11/X11CursorSource.h"
#include "screen/x11/X11ScreenStreamer.h"
#include "screen/x11/XcbConnection.h"
#include "x11/XWayland.h"

namespace kel
{

namespace
{

// X11 coordinates are signed 16-bit numbers.
constexpr int kMaxSide = 32767;

/// Empty for a working connection.
QString connectionError(const XcbConnection &connection)
{
    const bool isConnected = connection.isOpen() && connection.screen();
    if (isConnected && !isXWayland(connection))
        return {};
    if (isConnected || qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        return QStringLiteral("The screen cannot be captured: ") + xWaylandError();
    const QString display = qEnvironmentVariable("DISPLAY");
    if (display.isEmpty())
        return QStringLiteral("The screen cannot be captured: there is no display (DISPLAY is not set).");
    return QStringLiteral("The screen cannot be captured: no connection to the X server \"%1\".").arg(display);
}

std::unique_ptr<KelScreenStreamer> streamerFor(const QRect &physical)
{
    QString error = captureRectError(physical, kMaxSide);
    if (!error.isEmpty())
        return std::make_unique<FailedScreenStreamer>(error);
    auto connection = std::make_unique<XcbConnection>();
    error = connectionError(*connection);
    if (!error.isEmpty())
        return std::make_unique<FailedScreenStreamer>(error);
    return std::make_unique<X11ScreenStreamer>(std::move(connection), physical);
}

} // namespace

QString X11ScreenBackend::errorString() const
{
    return streamerFor({0, 0, 1, 1})->errorString();
}

std::unique_ptr<KelScreenStreamer> X11ScreenBackend::createStreamer(const QRect &rect, bool)
{
    return streamerFor(physicalRect(rect));
}

std::unique_ptr<KelCursorSource> X11ScreenBackend::createCursorSource(const QRect &rect)
{
    return std::make_unique<X11CursorSource>(screenGeometry(rect));
}

} // namespace kel
