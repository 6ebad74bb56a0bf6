#pragma once

#include "KelStyleGlobal.h"

#include <QRect>

/// Logical pixels of the screen that holds `rect` per pixel of a 96-dpi desktop, the unit of overlay and effect sizes:
/// the screen's logical dots per inch / 96. 1.0 without a screen.
///
/// The screen is the one with the largest part of `rect`, which is in logical pixels of the desktop; the primary screen
/// when no screen intersects it. GUI thread.
KELSTYLE_EXPORT double getPixelRatio(const QRect &rect);

/// Physical pixels per logical pixel of the same screen. 1.0 without a screen. GUI thread.
KELSTYLE_EXPORT double getDevicePixelRatio(const QRect &rect);
