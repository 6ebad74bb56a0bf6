#pragma once

#include <QPoint>

namespace kel
{

/// What is painted of a click or a turn of the wheel in one frame.
struct ShownMouseEffect {
    bool isWheel = false;
    int frame = 0;   // of the animation, in playback frames
    QPoint position; // of the center, in logical pixels of the record area
    int variant = 0; // the button, or the direction of the wheel

    bool operator==(const ShownMouseEffect &other) const
    {
        return isWheel == other.isWheel && frame == other.frame && position == other.position &&
               variant == other.variant;
    }
};

} // namespace kel
