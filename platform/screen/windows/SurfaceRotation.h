#pragma once

#include <QRect>
#include <QSize>

namespace kel
{

/// Converts between the surface that a graphics adapter scans out and a rotated screen.
class SurfaceRotation
{
public:
    SurfaceRotation() = default;

    /// The screen shows the surface rotated clockwise by 0, 90, 180 or 270 degrees.
    SurfaceRotation(int degrees, const QSize &surface)
        : m_degrees(degrees)
        , m_surface(surface)
    {
    }

    int degrees() const { return m_degrees; }

    /// Converts a rectangle of the surface to the screen, and back.
    QRect toScreen(const QRect &onSurface) const;
    QRect toSurface(const QRect &onScreen) const;

private:
    int m_degrees = 0;
    QSize m_surface;
};

} // namespace kel
