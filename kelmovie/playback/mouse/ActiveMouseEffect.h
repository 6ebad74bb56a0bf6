#pragma once

#include "playback/mouse/MouseClick.h"

#include <QPoint>

namespace kel
{

/// An animation that is being played for a click or a turn of the wheel.
struct ActiveMouseEffect {
    bool isWheel = false;
    MouseButton button = MouseButton::Other; // not for the wheel
    QPoint position;                         // where it was clicked or turned
    int delta = 0;                           // of the wheel
    bool isLong = false;                     // follows the pointer: a long press, or the wheel
    int releaseFrame = 0;                    // the logic frame in which a long press ends
    int remaining = 0;                       // steps left
    int current = 0;                         // frame of the animation
    int total = 0;                           // frames of the animation
    int holdFrame = 0;                       // the animation frame in which a long press stands still
    bool isHolding = false;                  // the button is still down
    bool isHoldReached = false;
};

} // namespace kel
