#include "style/PixelRatio.h"

#include <QGuiApplication>
#include <QScreen>

namespace
{

/// Null without a QGuiApplication.
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

} // namespace

double getPixelRatio(const QRect &rect)
{
    const QScreen *screen = screenHolding(rect);
    return screen ? screen->logicalDotsPerInch() / 96.0 : 1.0;
}

double getDevicePixelRatio(const QRect &rect)
{
    const QScreen *screen = screenHolding(rect);
    return screen ? screen->devicePixelRatio() : 1.0;
}
