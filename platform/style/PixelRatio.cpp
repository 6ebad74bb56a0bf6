#include "style/PixelRatio.h"

#include <QGuiApplication>
#include <QScreen>

namespace
{

QScreen *screenHolding(const QRect &rect)
{
    if (!qGuiApp)
        return nullptr;
    QScreen *best = QGuiApplication::primaryScreen();
    qint64 bestArea = 0;
    for (QScreen *screen : QGuiApplication::screens()) {
        const QRect common = screen->geometry() & rect;
        const qint64 area = common.isEmpty() ? 0 : qint64(common.width()) * common.height();
        if (area > bestArea) {
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
