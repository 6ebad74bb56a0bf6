#pragma once

#include <QPoint>

namespace kel
{

enum class MouseButton { Left, Right, Middle, Other };

/// A button that went down or up, or a turn of the wheel.
struct MouseClick {
    enum class Action { Click, Release, Wheel };

    Action action = Action::Click;
    MouseButton button = MouseButton::Other; // not for the wheel
    int frame = 0;                           // logic frame
    QPoint position;                         // from the record area's top-left corner, in logical pixels
    int delta = 0;                           // of the wheel
    // Of a click whose release is known:
    bool isPaired = false;
    bool isLong = false; // held for half a second or more
    int releaseFrame = 0;
};

} // namespace kel
