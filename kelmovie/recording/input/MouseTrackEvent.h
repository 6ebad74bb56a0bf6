#pragma once

#include <QString>

namespace kel
{

/// An event of the pointer.
struct MouseTrackEvent {
    int frame = 0;        ///< logic frame
    int x = -1;           ///< logical pixels from the left edge of the recorded rectangle; -1 for "hide"
    int y = -1;           ///< from the top edge
    QString action;       ///< "move", "hide", "cursor_change", "click", "release" or "wheel"
    QString button;       ///< "left", "right", "middle" or "unknown"; empty unless clicked or released
    QString cursor;       ///< the id of the shape; empty for "hide" and "wheel"
    int delta = 0;        ///< of a wheel: 120 a notch, positive away from the user
    qint64 timestamp = 0; ///< ms of wall-clock time since the recording's start, pauses included
};

} // namespace kel
