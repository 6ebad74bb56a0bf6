#pragma once

#include "playback/keys/KeyDisplayList.h"
#include "playback/keys/KeyDisplaySettings.h"
#include "recording/input/KeyLogReader.h"

#include <KelMovie/KelPlaybackRules.h>

#include <vector>

namespace kel
{

/// A recorded key and what it means for the display.
struct KeyStroke {
    enum Kind {
        Press,
        Release,
        HiddenPress, ///< is not displayed
        Standstill   ///< changes nothing: capture is off, or is switched on or off
    };

    Kind kind = Press;
    int frame = 0; ///< where it is displayed
    int key = 0;
    quint32 modifiers = 0; ///< held, this key included
    KeyDisplayItem::Type type = KeyDisplayItem::NoType;
    bool isText = false;   ///< types a character, whatever the layout
    bool isRepeat = false; ///< an auto-repeated press
};

/// The records, which name keys as they are shown, as they are displayed by `rules` in the logic frames from 0 to
/// `totalFrames`. Sorted by frame.
std::vector<KeyStroke> keyStrokes(const std::vector<KeyRecord> &records, int totalFrames,
                                  const KeyDisplaySettings &settings, const KelPlaybackRules &rules);

} // namespace kel
