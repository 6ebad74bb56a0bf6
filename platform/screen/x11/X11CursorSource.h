#pragma once

#include "geometry/ScreenGeometry.h"
#include "screen/KelCursorSource.h"
#include "screen/x11/XcbConnection.h"

#include <QHash>

#include <xcb/xfixes.h>

#include <mutex>

namespace kel
{

/// The pointer of the X screen that $DISPLAY names.
///
/// Its position is requested each time. The server announces changes of its shape with a serial, so pixels are
/// requested only once per shape.
class X11CursorSource final : public KelCursorSource
{
public:
    /// Positions are converted to the logical pixels of `screen`.
    explicit X11CursorSource(const ScreenGeometry &screen);

    KelCursorPixmap read() override;

private:
    bool subscribeToShapes();
    void processNotifications();
    const KelCursorShape *currentShape();
    KelCursorPixmap snapshotWithoutReply();

    const ScreenGeometry m_screen;

    std::mutex m_mutex; // guards the members below
    XcbConnection m_connection;
    QHash<quint32, KelCursorShape> m_shapes; // by serial; without a type where nothing is visible
    quint32 m_serial = 0;                    // of the current shape; 0 before it is known
    int m_cursorNotifyEvent = 0;             // event code; 0 when the pointer cannot be captured
    KelCursorPixmap m_last;
};

} // namespace kel
