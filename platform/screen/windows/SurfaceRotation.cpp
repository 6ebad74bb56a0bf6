#include "screen/windows/SurfaceRotation.h"

namespace kel
{

namespace
{

QRect rotated(const QRect &rect, int degrees, const QSize &within)
{
    const int fromRight = within.width() - rect.x() - rect.width();
    const int fromBottom = within.height() - rect.y() - rect.height();
    switch (degrees) {
    case 90:
        return {fromBottom, rect.x(), rect.height(), rect.width()};
    case 180:
        return {fromRight, fromBottom, rect.width(), rect.height()};
    case 270:
        return {rect.y(), fromRight, rect.height(), rect.width()};
    default:
        return rect;
    }
}

} // namespace

QRect SurfaceRotation::toScreen(const QRect &onSurface) const
{
    return rotated(onSurface, m_degrees, m_surface);
}

QRect SurfaceRotation::toSurface(const QRect &onScreen) const
{
    const bool isUpright = m_degrees % 180 == 0;
    return rotated(onScreen, (360 - m_degrees) % 360, isUpright ? m_surface : m_surface.transposed());
}

} // namespace kel
