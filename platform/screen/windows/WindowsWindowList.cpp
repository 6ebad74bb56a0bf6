#include "screen/KelWindowList.h"

#include "geometry/ScreenGeometry.h"
#include "screen/windows/NativeRect.h"

#include <dwmapi.h>

using namespace kel;

namespace
{

/// Suspended programs and windows of other virtual desktops are formally visible but cloaked.
bool isSeen(HWND window)
{
    DWORD cloaked = 0;
    return IsWindowVisible(window) && !IsIconic(window) && window != GetShellWindow() &&
           (FAILED(DwmGetWindowAttribute(window, DWMWA_CLOAKED, &cloaked, sizeof cloaked)) || cloaked == 0);
}

/// Without the shadow, which GetWindowRect() includes.
QRect frameOf(HWND window)
{
    RECT frame{};
    if (FAILED(DwmGetWindowAttribute(window, DWMWA_EXTENDED_FRAME_BOUNDS, &frame, sizeof frame)))
        GetWindowRect(window, &frame);
    return fromNative(frame);
}

BOOL CALLBACK addWindow(HWND window, LPARAM rects)
{
    const QRect frame = isSeen(window) ? frameOf(window) : QRect();
    const QRect logical = frame.width() >= KelWindowList::kMinimumSide && frame.height() >= KelWindowList::kMinimumSide
                              ? logicalRect(frame)
                              : QRect();
    if (!logical.isEmpty())
        reinterpret_cast<QVector<QRect> *>(rects)->append(logical);
    return TRUE;
}

} // namespace

QVector<QRect> KelWindowList::windowRects()
{
    QVector<QRect> rects;
    EnumWindows(addWindow, reinterpret_cast<LPARAM>(&rects)); // the topmost first
    return rects;
}
