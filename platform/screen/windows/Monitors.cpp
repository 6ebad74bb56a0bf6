#include "screen/windows/Monitors.h"

#include "screen/windows/NativeRect.h"

namespace kel
{

namespace
{

BOOL CALLBACK addMonitor(HMONITOR, HDC, LPRECT place, LPARAM region)
{
    *reinterpret_cast<QRegion *>(region) += fromNative(*place);
    return TRUE;
}

} // namespace

QRegion monitorRegion()
{
    QRegion region;
    EnumDisplayMonitors(nullptr, nullptr, addMonitor, reinterpret_cast<LPARAM>(&region));
    return region;
}

} // namespace kel
