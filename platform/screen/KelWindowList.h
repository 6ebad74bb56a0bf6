#pragma once

#include <QRect>
#include <QVector>

/// The windows on the desktop that a user may want to record.
namespace KelWindowList
{

/// Smaller windows are helpers of the desktop or of a window manager. In physical pixels.
constexpr int kMinimumSide = 24;

/// The rectangles of all visible windows including their frames, topmost first, in logical pixels of the desktop.
/// Windows smaller than kMinimumSide are left out. Empty where the system does not provide them. GUI thread.
QVector<QRect> windowRects();

} // namespace KelWindowList
