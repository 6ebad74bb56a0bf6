#pragma once

#include <QPoint>

/// One key going down or up, anywhere on the desktop.
struct KelKeyboardEvent {
    int key;   ///< a Qt::Key value: what QKeyEvent::key() would say; never 0
    int state; ///< 1 pressed (again for every auto-repeat), 0 released
};
static_assert(sizeof(KelKeyboardEvent) == 8, "key code and state, nothing else");

/// One mouse button going down or up, anywhere on the desktop.
struct KelMouseEvent {
    int button;            ///< a Qt::MouseButton value: 1 left, 2 right, 4 middle, 8 back, 16 forward, …
    QPoint globalPosition; ///< where the pointer was, in logical pixels of the desktop (as QCursor::pos())
    int state;             ///< 1 pressed, 0 released
};

/// One notch of the vertical wheel, anywhere on the desktop. Sideways turns are not reported.
struct KelWheelEvent {
    int delta;             ///< as QWheelEvent::angleDelta().y(): 120 away from the user, -120 towards the user
    QPoint globalPosition; ///< where the pointer was, in logical pixels of the desktop
};
