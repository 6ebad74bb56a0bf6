#pragma once

#include "KelStyleGlobal.h"

#include <QRect>

/// Scale of things that are measured in pixels of a 96-dpi desktop (overlay and effect sizes) to logical pixels of the
/// screen that holds `rect`: its logical dots per inch / 96. 1.0 where there is no screen.
/// `rect` is in logical pixels of the desktop. GUI thread.
KELSTYLE_EXPORT double getPixelRatio(const QRect &rect);

/// Physical pixels per logical pixel of the screen that holds `rect` (the one with the largest common area; the primary
/// screen when `rect` lies outside of all). 1.0 where there is no screen. `rect` is in logical pixels. GUI thread.
KELSTYLE_EXPORT double getDevicePixelRatio(const QRect &rect);
