#include "geometry/PhysicalRect.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace kel
{

ScreenScale screenScale(const QRect &rect)
{
    // The choice must be the one of getDevicePixelRatio(), from which callers know the size that they will get.
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
    return best ? ScreenScale{best->geometry().topLeft(), best->devicePixelRatio()} : ScreenScale{};
}

QRect logicalRect(const QRect &physical)
{
    for (const QScreen *screen : QGuiApplication::screens()) {
        const ScreenScale scale{screen->geometry().topLeft(), screen->devicePixelRatio()};
        const QRect pixels(scale.origin, screen->geometry().size() * scale.ratio);
        if (pixels.contains(physical.center()))
            return QRect(scale.toLogical(physical.topLeft()), physical.size() / scale.ratio);
    }
    return {};
}

QRect physicalRect(const QRect &rect)
{
    return physicalRect(rect, screenScale(rect));
}

QRect physicalRect(const QRect &rect, const ScreenScale &scale)
{
    const auto scaled = [&scale](int length) { return int(std::lround(length * scale.ratio)); };
    const QPoint offset = rect.topLeft() - scale.origin;
    return {scale.origin + QPoint(scaled(offset.x()), scaled(offset.y())),
            QSize(scaled(rect.width()), scaled(rect.height()))};
}

} // namespace kel
