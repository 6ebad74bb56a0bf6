#pragma once

#include "playback/keys/KeyDisplaySettings.h"

#include <QColor>
#include <QFont>

namespace kel
{

/// How typed keys are shown. Sizes are in pixels of a 96-dpi desktop.
struct KeyOverlayStyle {
    /// Where the boxes are stacked; any other value counts as BottomCenter.
    enum Position { BottomCenter = 1, BottomLeft = 2, BottomRight = 3 };

    QFont font;
    int fontSizePx = 16;
    int historyFontSizePx = 16;
    QColor fontColor{255, 255, 255, 255};
    QColor bgColor{0, 0, 0, 180};
    KeyDisplaySettings display;
    int displayPos = BottomCenter;
    bool enabled = true;
};

} // namespace kel
