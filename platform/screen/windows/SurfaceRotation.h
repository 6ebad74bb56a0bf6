#pragma once

#include <QRect>
#include <QSize>

namespace kel
{

/// How the surface that a graphics adapter scans out lies on a screen that somebody has turned.
class SurfaceRotation
{
public:
    SurfaceRotation() = default;

    /// The surface appears turned clockwise by 0, 90, 180 or 270 degrees.
    SurfaceRotation(int degrees, const QSize &surface)
        : m_degrees(degrees)
        , m_surface(surface)
    {
    }

    int degrees() const { return m_degrees; }

    /// Rectangles of the surface on the screen, and the other way round.
    QRect toScreen(const QRect &onSurface) const;
    QRect toSurface(const QRect &onScreen) const;

private:
    int m_degrees = 0;
    QSize m_surface;
};

} // namespace kel
