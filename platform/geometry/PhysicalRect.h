#pragma once

#include <QPoint>
#include <QRect>

namespace kel
{

/// How a screen's logical pixels lie on the system's physical ones.
struct ScreenScale {
    QPoint origin;      ///< the screen's top-left corner, which is the same in both
    double ratio = 1.0; ///< physical pixels to a logical one

    /// A position, rounded as Qt rounds those of its pointer events.
    QPoint toLogical(const QPoint &physical) const { return origin + (physical - origin) / ratio; }
};

/// The scale of the screen that holds most of `rect` (logical pixels of the desktop); 1 where there is no
/// QGuiApplication. GUI thread.
ScreenScale screenScale(const QRect &rect);

/// The physical pixels that `rect` covers on the screen that holds most of it. GUI thread.
QRect physicalRect(const QRect &rect);

/// The same for a given scale. Width and height are rounded one by one, half away from zero, so that a size does not
/// depend on the position.
QRect physicalRect(const QRect &rect, const ScreenScale &scale);

/// The logical pixels of the desktop that `physical` covers; empty when its centre is on no screen. GUI thread.
QRect logicalRect(const QRect &physical);

} // namespace kel
