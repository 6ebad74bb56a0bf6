#pragma once

#include "geometry/ScreenGeometry.h"

#include <QPoint>

#include <mutex>
#include <vector>

namespace kel
{

/// A copy of the geometry of all screens that follows every change: converts positions on any thread, although QScreen
/// may be used on the GUI thread only.
class ScreenLayout
{
public:
    /// Starts to follow the application's screens. No effect when called again, or without a QGuiApplication.
    void watch();

    /// The logical position of a physical one; unchanged outside of all screens. Any thread.
    QPoint toLogical(const QPoint &physical) const;

private:
    void followScreens();
    void update();

    mutable std::mutex m_mutex;
    bool m_isWatching = false;
    std::vector<ScreenGeometry> m_screens;
};

} // namespace kel
