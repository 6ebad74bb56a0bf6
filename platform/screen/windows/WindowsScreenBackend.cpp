#include "screen/windows/WindowsScreenBackend.h"

#include "geometry/ScreenGeometry.h"
#include "screen/CaptureRect.h"
#include "screen/FailedScreenStreamer.h"
#include "screen/NativeScreenBackend.h"
#include "screen/windows/DuplicationDesktopReader.h"
#include "screen/windows/GdiDesktopReader.h"
#include "screen/windows/Monitors.h"
#include "screen/windows/WindowsCursorSource.h"
#include "screen/windows/WindowsScreenStreamer.h"

namespace kel
{

namespace
{

// The maximum texture size of graphics adapters.
constexpr int kMaxSide = 16384;

} // namespace

std::unique_ptr<KelScreenBackend> createNativeScreenBackend()
{
    return std::make_unique<WindowsScreenBackend>();
}

QString WindowsScreenBackend::errorString() const
{
    return monitorRegion().isEmpty() ? QStringLiteral("The screen cannot be captured: there is no desktop.")
                                     : QString();
}

std::unique_ptr<KelScreenStreamer> WindowsScreenBackend::createStreamer(const QRect &rect, bool)
{
    const QRect physical = physicalRect(rect);
    QString error = captureRectError(physical, kMaxSide);
    if (error.isEmpty())
        error = errorString();
    if (!error.isEmpty())
        return std::make_unique<FailedScreenStreamer>(error);
    WindowsScreenStreamer::Readers readers;
    readers.push_back(std::make_unique<DuplicationDesktopReader>(physical));
    readers.push_back(std::make_unique<GdiDesktopReader>(physical));
    return std::make_unique<WindowsScreenStreamer>(std::move(readers));
}

std::unique_ptr<KelCursorSource> WindowsScreenBackend::createCursorSource(const QRect &rect)
{
    return std::make_unique<WindowsCursorSource>(screenGeometry(rect));
}

} // namespace kel
