#pragma once

#include "avcodec/animation/ColorHistogram.h"

#include <QColor>

#include <utility>
#include <vector>

namespace av
{

/// How the bins of a histogram are shown by the colors of a palette.
struct PaletteMatch {
    std::vector<quint8> indexOfBin;
    double meanError = 0; ///< squared distance of a pixel's color, all channels together; that inside bins not counted
};

/// Up to 256 colors.
class ColorPalette
{
public:
    ColorPalette() = default;
    explicit ColorPalette(std::vector<QRgb> colors)
        : m_colors(std::move(colors))
    {
    }

    /// The colors that show the histogram best, at most `limit` (1 to 256); exactly its own when they are no more.
    static ColorPalette bestFor(const ColorHistogram &histogram, int limit);

    const std::vector<QRgb> &colors() const { return m_colors; }
    PaletteMatch match(const ColorHistogram &histogram) const;

    /// The same colors in such an order that every beginning of it shows the histogram well.
    ColorPalette ordered(const ColorHistogram &histogram) const;

    /// The first `count` colors, or all if they are not more.
    ColorPalette beginning(std::size_t count) const;

private:
    std::vector<QRgb> m_colors;
};

} // namespace av
