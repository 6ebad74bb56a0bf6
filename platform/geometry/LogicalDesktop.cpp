#include "geometry/LogicalDesktop.h"

#include <QGuiApplication>
#include <QScreen>

namespace kel
{

void LogicalDesktop::watch()
{
    auto *app = qobject_cast<QGuiApplication *>(QCoreApplication::instance()); // a console program has another kind
    if (!app)
        return;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_watching)
            return;
        m_watching = true;
    }
    // At once on the GUI thread, soon from another.
    QMetaObject::invokeMethod(app, [this] { followScreens(); });
}

void LogicalDesktop::followScreens()
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

void LogicalDesktop::update()
{
    std::vector<Screen> screens;
    for (const QScreen *screen : QGuiApplication::screens())
        screens.push_back({screen->geometry(), screen->devicePixelRatio()});
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_screens = std::move(screens);
}

QPoint LogicalDesktop::toLogical(QPoint physical) const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return toLogical(m_screens, physical);
}

QPoint LogicalDesktop::toLogical(const std::vector<Screen> &screens, QPoint physical)
{
    for (const Screen &screen : screens) {
        const QPoint origin = screen.geometry.topLeft();
        if (QRect(origin, screen.geometry.size() * screen.scale).contains(physical))
            return (physical - origin) / screen.scale + origin;
    }
    return physical;
}

} // namespace kel
