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
/// Where it is has to be asked each time. When its shape changes the server says so, with a number for the new shape:
/// pixels are fetched once a shape.
class X11CursorSource final : public KelCursorSource
{
public:
    /// `scale`: of the screen to whose logical pixels positions are converted.
    explicit X11CursorSource(const ScreenGeometry &screen);

    KelCursorPixmap read() override;

private:
    bool watchShapes();
    void takeNotices();
    const KelCursorShape *currentShape();
    KelCursorPixmap withoutAnswer();

    const ScreenGeometry m_screen;

    std::mutex m_mutex; // guards what follows
    XcbConnection m_connection;
    QHash<quint32, KelCursorShape> m_shapes; // by the server's number; without type where there is nothing to see
    quint32 m_serial = 0;                    // the present shape's number; 0 before it is known
    int m_shapeNotice = 0;                   // the event's code; 0 when the pointer cannot be watched
    KelCursorPixmap m_last;
};

} // namespace kel
