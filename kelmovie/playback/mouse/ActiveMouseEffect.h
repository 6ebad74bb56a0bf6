#pragma once

#include "playback/mouse/MouseClick.h"

#include <QPoint>

namespace kel
{

/// A running animation for a click or a turn of the wheel. Effects advance by one playback frame per seek.
struct ActiveMouseEffect {
    bool isWheel = false;
    MouseButton button = MouseButton::Other; // unused for the wheel
    QPoint position;                         // of the click or turn, in logical pixels of the record area
    int delta = 0;                           // of the wheel; sign as in MouseClick
    bool isLong = false;                     // follows the pointer: a long press, or the wheel
    int releaseFrame = 0;                    // the logic frame at which a long press ends
    int remaining = 0;                       // playback frames left
    int current = 0;                         // current frame of the animation, in playback frames
    int total = 0;                           // length of the animation in playback frames
    int holdFrame = 0;                       // the frame at which the animation of a long press pauses
    bool isHolding = false;                  // the button is still down
    bool isHoldReached = false;
};

} // namespace kel
