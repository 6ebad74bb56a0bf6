#include "screen/KelWindowList.h"

#include "geometry/ScreenGeometry.h"
#include "screen/windows/NativeRect.h"

#include <dwmapi.h>

using namespace kel;

namespace
{

constexpr int smallestSide = 24; // what is smaller nobody wants to record

/// Programs that sleep, and windows of other virtual desktops, are visible to all but the eye.
bool isSeen(HWND window)
{
    DWORD cloaked = 0;
    return IsWindowVisible(window) && !IsIconic(window) && window != GetShellWindow() &&
           (FAILED(DwmGetWindowAttribute(window, DWMWA_CLOAKED, &cloaked, sizeof cloaked)) || cloaked == 0);
}

/// Without the shadow, which counts as a part of the window elsewhere.
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
    const QRect logical =
        frame.width() >= smallestSide && frame.height() >= smallestSide ? logicalRect(frame) : QRect();
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
