#pragma once

#include <QColor>
#include <QRect>

#include <optional>
#include <vector>

namespace av
{

/// What a picture changes of the one before it: the smallest rectangle around all changed pixels. It holds the true
/// color of every pixel in there, and tells by the alpha which of them changed, so that a frame can be encoded
/// without any other picture at hand.
struct FrameDelta {
    static constexpr QRgb kChanged = 0xff000000u;

    QRect rect;               ///< place in the picture
    std::vector<QRgb> pixels; ///< row by row; alpha 255: changed, 0: as in the picture before

    /// Without alpha: what no pixel of this picture and of all before it has been, if there is such a color at hand.
    std::optional<QRgb> unusedColor = std::nullopt;

    static bool isChanged(QRgb pixel) { return pixel & kChanged; }
    static QRgb color(QRgb pixel) { return pixel & ~kChanged; }

    /// The pixels, all opaque.
    std::vector<QRgb> opaquePixels() const;

    /// The pixels, opaque but for unchanged ones, which are transparent (0) where that should help compression: in
    /// long runs of changing colors. Other runs look like their surroundings, which helps more.
    std::vector<QRgb> pixelsWithTransparency() const;

    /// Those pixels only whose left neighbour looks different; the others pass for unchanged.
    FrameDelta edges() const;

    /// Some bands of a large picture, to try out on a fraction of it what is best for the whole; all of a small one.
    FrameDelta sample() const;
};

} // namespace av
