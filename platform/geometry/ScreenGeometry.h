#pragma once

#include <QPoint>
#include <QRect>

#include <vector>

class QScreen;

namespace kel
{

/// Maps between a screen's logical pixels, those of Qt's desktop, and the system's physical pixels.
struct ScreenGeometry {
    QRect logical;      ///< the screen on Qt's desktop; its top-left corner is the same in physical pixels
    double ratio = 1.0; ///< physical pixels per logical pixel

    /// The screen in physical pixels.
    QRect physical() const { return {logical.topLeft(), logical.size() * ratio}; }

    /// A position, rounded as Qt rounds those of its pointer events.
    QPoint toLogical(const QPoint &position) const;

    /// The physical pixels that a logical rectangle covers. Width and height are rounded one by one, half away from
    /// zero, so that a size does not depend on the position.
    QRect toPhysical(const QRect &rect) const;
};

/// The screen with the largest part of `rect` (logical pixels); the primary screen when no screen intersects it. Null
/// without a QGuiApplication. GUI thread.
const QScreen *screenHolding(const QRect &rect);

/// The geometry of screenHolding(rect); ratio 1 without a QGuiApplication. GUI thread.
ScreenGeometry screenGeometry(const QRect &rect);

/// All screens of the desktop. GUI thread.
std::vector<ScreenGeometry> screenGeometries();

/// The one of `screens` that contains a physical position; null when none does.
const ScreenGeometry *screenAt(const std::vector<ScreenGeometry> &screens, const QPoint &physicalPosition);

/// The physical pixels that `rect` (logical pixels) covers on screenHolding(rect). GUI thread.
QRect physicalRect(const QRect &rect);

/// The logical pixels of a rectangle in physical pixels; empty when its center is on no screen. GUI thread.
QRect logicalRect(const QRect &physical);

} // namespace kel
