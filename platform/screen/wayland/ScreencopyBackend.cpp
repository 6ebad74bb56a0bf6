#include "screen/wayland/ScreencopyBackend.h"

#include "geometry/ScreenGeometry.h"
#include "screen/CaptureRect.h"
#include "screen/FailedScreenStreamer.h"
#include "screen/wayland/ScreencopyStreamer.h"

namespace kel
{

namespace
{

constexpr int kMaxSide = 32767;

QString connectionError(const WaylandConnection &connection)
{
    if (!connection.isOpen())
        return QStringLiteral("The screen cannot be captured: no connection to the Wayland compositor \"%1\".")
            .arg(qEnvironmentVariable("WAYLAND_DISPLAY"));
    if (!connection.hasScreencopy())
        return QStringLiteral("The screen cannot be captured: the Wayland compositor does not let programs copy it.");
    return {};
}

} // namespace

bool ScreencopyBackend::isAvailable()
{
    return connectionError(WaylandConnection()).isEmpty();
}

QString ScreencopyBackend::errorString() const
{
    return connectionError(WaylandConnection());
}

std::unique_ptr<KelScreenStreamer> ScreencopyBackend::createStreamer(const QRect &rect, bool withPointer)
{
    const QSize size = physicalRect(rect).size();
    QString error = captureRectError({{}, size}, kMaxSide);
    if (!error.isEmpty())
        return std::make_unique<FailedScreenStreamer>(error);
    auto connection = std::make_unique<WaylandConnection>();
    error = connectionError(*connection);
    if (!error.isEmpty())
        return std::make_unique<FailedScreenStreamer>(error);
    return std::make_unique<ScreencopyStreamer>(std::move(connection), rect, size, withPointer);
}

} // namespace kel
