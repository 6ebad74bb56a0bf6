#include "geometry/ScreenGeometry.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

ScreenGeometry geometryOf(const QScreen *screen)
{
    return {screen->geometry(), screen->devicePixelRatio()};
}

} // namespace

QPoint ScreenGeometry::toLogical(const QPoint &position) const
{
    const QPoint origin = logical.topLeft();
    return origin + (position - origin) / ratio;
}

QRect ScreenGeometry::toPhysical(const QRect &rect) const
{
    const auto scaled = [this](int length) { return int(std::lround(length * ratio)); };
    const QPoint origin = logical.topLeft();
    const QPoint offset = rect.topLeft() - origin;
    return {origin + QPoint(scaled(offset.x()), scaled(offset.y())),
            QSize(scaled(rect.width()), scaled(rect.height()))};
}

const QScreen *screenHolding(const QRect &rect)
{
    const QScreen *best = QGuiApplication::primaryScreen();
    qint64 bestArea = 0;
    for (const QScreen *screen : QGuiApplication::screens()) {
        const QRect common = screen->geometry() & rect;
        const qint64 area = qint64(common.width()) * common.height();
        if (!common.isEmpty() && area > bestArea) {
            best = screen;
            bestArea = area;
        }
    }
    return best;
}

ScreenGeometry screenGeometry(const QRect &rect)
{
    const QScreen *screen = screenHolding(rect);
    return screen ? geometryOf(screen) : ScreenGeometry{};
}

std::vector<ScreenGeometry> screenGeometries()
{
    std::vector<ScreenGeometry> geometries;
    for (const QScreen *screen : QGuiApplication::screens())
        geometries.push_back(geometryOf(screen));
    return geometries;
}

const ScreenGeometry *screenAt(const std::vector<ScreenGeometry> &screens, const QPoint &physicalPosition)
{
    const auto found = std::find_if(screens.begin(), screens.end(), [&](const ScreenGeometry &screen) {
        return screen.physical().contains(physicalPosition);
    });
    return found == screens.end() ? nullptr : &*found;
}

QRect physicalRect(const QRect &rect)
{
    return screenGeometry(rect).toPhysical(rect);
}

QRect logicalRect(const QRect &physical)
{
    const std::vector<ScreenGeometry> screens = screenGeometries();
    const ScreenGeometry *screen = screenAt(screens, physical.center());
    return screen ? QRect(screen->toLogical(physical.topLeft()), physical.size() / screen->ratio) : QRect();
}

} // namespace kel
