#pragma once

#include <QString>

#include <vector>

namespace kel
{

/// One box of the overlay.
struct KeyDisplayItem {
    /// Also the bits of the setting that chooses which boxes are shown.
    enum Type {
        NoType = 0,     ///< no box
        Character = 1,  ///< letters and digits, typed without modifiers
        Other = 2,      ///< one other key
        Modifier = 4,   ///< modifiers held alone
        Combination = 8 ///< modifiers and a key
    };

    QString text;
    int type = NoType;
    int timeMs = 0; ///< time of the last key event of the item, in ms from the start of the recording
    int count = 1;  ///< how many times it was typed in a row
};

/// What is displayed from one logic frame to another, inclusive.
struct KeyDisplayEntry {
    int firstFrame = 0;
    int lastFrame = 0;
    KeyDisplayItem current; ///< the current input
    int historyBegin = 0;   ///< start of the displayed range of KeyDisplayList::past, oldest first
    int historyEnd = 0;     ///< its end, exclusive

    bool hasCurrent() const { return current.type != KeyDisplayItem::NoType; }
    bool hasHistory() const { return historyBegin < historyEnd; }
    bool hasContent() const { return hasCurrent() || hasHistory(); }
    bool looksLike(const KeyDisplayEntry &other) const;
};

/// What is displayed at every logic frame of a recording. The history of an entry is a range of one list of past items,
/// so that memory grows with the number of items, and not with every change of the history.
struct KeyDisplayList {
    std::vector<KeyDisplayEntry> entries; ///< sorted, without overlap; nothing is displayed in between
    std::vector<KeyDisplayItem> past;     ///< in the order in which they became history

    /// Index of the entry that contains `frame`, -1 when nothing is displayed there.
    int indexAt(int frame) const;
    /// The frame after `frame` at which something is displayed, -1 when there is none. `index` is indexAt(frame).
    int nextFrame(int index, int frame) const;
};

} // namespace kel
