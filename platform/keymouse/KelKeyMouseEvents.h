#pragma once

#include <QPoint>

/// A key press or release anywhere on the desktop.
struct KelKeyboardEvent {
    int key;   ///< a Qt::Key value; Qt::Key_Meta for the Windows key, on every system; never 0
    int state; ///< 1 pressed (again for every auto-repeat), 0 released
};
static_assert(sizeof(KelKeyboardEvent) == 8, "contains only key code and state");

/// A mouse button press or release anywhere on the desktop.
struct KelMouseEvent {
    int button;              ///< a Qt::MouseButton value: 1 left, 2 right, 4 middle, 8 back, 16 forward, …
    QPoint globalPosition;   ///< where the pointer was, in logical pixels of the desktop (as QCursor::pos())
    int state;               ///< 1 pressed, 0 released
    bool hasPosition = true; ///< false where input tells nothing about the pointer, as in Wayland sessions
};

/// One notch of the vertical wheel anywhere on the desktop. Horizontal scrolling is not reported.
struct KelWheelEvent {
    int delta;               ///< as QWheelEvent::angleDelta().y(): 120 away from the user, -120 towards the user
    QPoint globalPosition;   ///< where the pointer was, in logical pixels of the desktop
    bool hasPosition = true; ///< see KelMouseEvent
};
