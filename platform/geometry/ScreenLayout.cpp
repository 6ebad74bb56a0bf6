#include "geometry/ScreenLayout.h"

#include <QGuiApplication>
#include <QScreen>

namespace kel
{

void ScreenLayout::watch()
{
    auto *app = qobject_cast<QGuiApplication *>(QCoreApplication::instance()); // null in a console program
    if (!app)
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_isWatching)
            return;
        m_isWatching = true;
    }
    // Runs at once on the GUI thread, is queued from any other.
    QMetaObject::invokeMethod(app, [this] { followScreens(); });
}

void ScreenLayout::followScreens()
{
    const auto follow = [this](QScreen *screen) {
        QObject::connect(screen, &QScreen::geometryChanged, qGuiApp, [this] { update(); });
        update();
    };
    QObject::connect(qGuiApp, &QGuiApplication::screenAdded, qGuiApp, follow);
    QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, qGuiApp, [this] { update(); });
    for (QScreen *screen : QGuiApplication::screens())
        follow(screen);
}

void ScreenLayout::update()
{
    std::vector<ScreenGeometry> screens = screenGeometries();
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_screens = std::move(screens);
}

QPoint ScreenLayout::toLogical(const QPoint &physical) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const ScreenGeometry *screen = screenAt(m_screens, physical);
    return screen ? screen->toLogical(physical) : physical;
}

} // namespace kel
