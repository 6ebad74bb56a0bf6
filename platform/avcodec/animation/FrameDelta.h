#pragma once

#include <QColor>
#include <QRect>

#include <optional>
#include <vector>

namespace av
{

/// The difference of a frame to the previous one: the bounding rectangle of all changed pixels. It holds the color of
/// every pixel inside, changed or not, and marks the changed ones by their alpha; so it can be encoded without any
/// other frame.
struct FrameDelta {
    static constexpr QRgb kChanged = 0xff000000u;

    QRect rect;               ///< position in the frame
    std::vector<QRgb> pixels; ///< row by row; alpha 255: changed, 0: as in the previous frame

    /// A color, without alpha, that no pixel of this or any previous frame has; none if all candidates are used.
    std::optional<QRgb> unusedColor = std::nullopt;

    static bool isChanged(QRgb pixel) { return pixel & kChanged; }
    static QRgb color(QRgb pixel) { return pixel & ~kChanged; }

    /// All pixels, opaque.
    std::vector<QRgb> opaquePixels() const;

    /// All pixels, where long unchanged runs of varying color are transparent (0) and everything else is opaque. Only
    /// these runs compress better when transparent; other unchanged pixels compress better when they continue the
    /// color of their surroundings.
    std::vector<QRgb> pixelsWithTransparency() const;

    /// Marks only those changed pixels that differ from their left neighbor.
    FrameDelta edges() const;

    /// Some horizontal bands of a large delta, for choosing the best encoding at a fraction of the cost; a small delta
    /// is returned whole.
    FrameDelta sample() const;
};

} // namespace av
