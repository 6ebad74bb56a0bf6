#include "screen/PhysicalRect.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>

QRect physicalRect(const QRect &rect)
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
    // Qt scales a screen around its top-left corner, which is the same in logical and in physical pixels.
    return best ? physicalRect(rect, best->geometry().topLeft(), best->devicePixelRatio()) : rect;
}

QRect physicalRect(const QRect &rect, const QPoint &origin, double ratio)
{
    const auto scaled = [ratio](int length) { return int(std::lround(length * ratio)); };
    const QPoint offset = rect.topLeft() - origin;
    return {origin + QPoint(scaled(offset.x()), scaled(offset.y())),
            QSize(scaled(rect.width()), scaled(rect.height()))};
}
