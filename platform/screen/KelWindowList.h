#pragma once

#include <QRect>
#include <QVector>

/// The windows on the desktop.
namespace KelWindowList
{

/// The rectangles of all windows that are seen, frames included, the topmost first, in logical pixels of the desktop.
/// Empty where the system does not tell. GUI thread.
QVector<QRect> windowRects();

} // namespace KelWindowList
