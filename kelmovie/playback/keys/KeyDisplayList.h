#pragma once

#include <QString>

#include <vector>

namespace kel
{

/// One box on the screen.
struct KeyDisplayItem {
    /// Bits of the setting which boxes are shown.
    enum Type {
        NoType = 0,     ///< no box
        Character = 1,  ///< letters and digits, typed without modifiers
        Other = 2,      ///< one other key
        Modifier = 4,   ///< modifiers held alone
        Combination = 8 ///< modifiers and a key
    };

    QString text;
    int type = NoType;
    int timeMs = 0; ///< of a key event that touched the item, from the start of the recording
    int count = 1;  ///< how many times it was typed in a row
};

/// What is displayed from one logic frame to another, both included.
struct KeyDisplayEntry {
    int firstFrame = 0;
    int lastFrame = 0;
    KeyDisplayItem current; ///< what is being typed
    int historyBegin = 0;   ///< the range of KeyDisplayList::past that is displayed too, oldest first
    int historyEnd = 0;

    bool hasCurrent() const { return current.type != KeyDisplayItem::NoType; }
    bool hasHistory() const { return historyBegin < historyEnd; }
    bool hasContent() const { return hasCurrent() || hasHistory(); }
    bool looksLike(const KeyDisplayEntry &other) const;
};

/// What is displayed at every logic frame of a recording. The history is a window that moves over one list of past
/// items, so that hours of typing need no copy of it for every change.
struct KeyDisplayList {
    std::vector<KeyDisplayEntry> entries; ///< in order, without overlap; nothing is displayed in between
    std::vector<KeyDisplayItem> past;     ///< in the order in which they became history

    /// Index of the entry that holds `frame`, -1 when nothing is displayed then.
    int indexAt(int frame) const;
    /// The frame after `frame` at which something is displayed, -1 when there is none. `index` is indexAt(frame).
    int nextFrame(int index, int frame) const;
};

} // namespace kel
