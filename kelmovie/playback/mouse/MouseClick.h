#pragma once

#include <QPoint>

namespace kel
{

enum class MouseButton { Left, Right, Middle, Other };

/// A press or release of a button, or a turn of the wheel.
struct MouseClick {
    enum class Action { Click, Release, Wheel };

    Action action = Action::Click;
    MouseButton button = MouseButton::Other; // unused for the wheel
    int frame = 0;                           // logic frame
    QPoint position;                         // from the record area's top-left corner, in logical pixels
    int delta = 0;                           // of the wheel, above 0 for upwards
    qint64 timestamp = 0;                    // in ms by the wall clock, pauses included
    // For clicks with a known release:
    bool isPaired = false;
    bool isLong = false;  // held for half a second or more
    int releaseFrame = 0; // logic frame
};

} // namespace kel
