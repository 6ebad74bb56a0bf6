#pragma once

namespace kel
{

/// The user's settings that decide which keys are displayed, and for how long.
struct KeyDisplaySettings {
    int keepTimeSeconds = 3;
    int maxHistoryCount = 5;  ///< displayed boxes, including the current one
    int maxContinueChar = 20; ///< characters in one box of continuous text
    int shownTypes = 0;       ///< bits of KeyDisplayItem::Type

    bool operator==(const KeyDisplaySettings &other) const
    {
        return keepTimeSeconds == other.keepTimeSeconds && maxHistoryCount == other.maxHistoryCount &&
               maxContinueChar == other.maxContinueChar && shownTypes == other.shownTypes;
    }
};

} // namespace kel
