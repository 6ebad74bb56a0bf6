#include "style/PixelRatio.h"

#include "geometry/ScreenGeometry.h"

#include <QScreen>

double getPixelRatio(const QRect &rect)
{
    const QScreen *screen = kel::screenHolding(rect);
    return screen ? screen->logicalDotsPerInch() / 96.0 : 1.0;
}

double getDevicePixelRatio(const QRect &rect)
{
    return kel::screenGeometry(rect).ratio;
}
