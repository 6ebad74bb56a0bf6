#pragma once

#include <QPoint>
#include <QRect>

/// The physical pixels that `rect` (logical pixels of the desktop) covers, as the screen that holds most of it maps
/// them; unchanged where there is no QGuiApplication. GUI thread.
QRect physicalRect(const QRect &rect);

/// The same for a screen whose top-left corner is `origin` and that has `ratio` physical pixels to a logical one.
/// Width and height are rounded one by one, half away from zero, so that a size does not depend on the position.
QRect physicalRect(const QRect &rect, const QPoint &origin, double ratio);
