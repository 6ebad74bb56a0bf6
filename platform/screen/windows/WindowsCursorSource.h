#pragma once

#include "geometry/ScreenGeometry.h"
#include "screen/KelCursorSource.h"

#include <QElapsedTimer>
#include <QVector>

#include <mutex>

#include <windows.h>

namespace kel
{

/// The pointer of the desktop.
class WindowsCursorSource final : public KelCursorSource
{
public:
    explicit WindowsCursorSource(const ScreenGeometry &screen);

    KelCursorPixmap read() override;

private:
    struct Frame {
        KelCursorShape shape;
        qint64 endMs; // relative to m_sinceLoaded
    };

    void load(HCURSOR cursor);
    const KelCursorShape &currentShape() const;

    const ScreenGeometry m_screen;
    std::mutex m_mutex; // guards the members below
    HCURSOR m_cursor = nullptr;
    QVector<Frame> m_frames; // of m_cursor; one unless it is animated
    QElapsedTimer m_sinceLoaded;
};

} // namespace kel
