#pragma once

#include <QPoint>
#include <QRect>

#include <mutex>
#include <vector>

namespace kel
{

/// Converts positions from the pixels of the system to the logical pixels of Qt's desktop, on any thread, although
/// screens can be asked on the GUI thread only: it keeps a copy of their places that follows every change.
class LogicalDesktop
{
public:
    struct Screen {
        QRect geometry; ///< logical; a screen's top-left corner is the same in both kinds of pixel
        double scale;   ///< physical pixels per logical pixel
    };

    /// Begins to follow the application's screens; has no effect when it does already, or without an application.
    void watch();

    QPoint toLogical(QPoint physical) const;

    /// The conversion itself. Outside of all screens the position stays as it is.
    static QPoint toLogical(const std::vector<Screen> &screens, QPoint physical);

private:
    void followScreens();
    void update();

    mutable std::mutex m_mutex;
    bool m_watching = false;
    std::vector<Screen> m_screens;
};

} // namespace kel
