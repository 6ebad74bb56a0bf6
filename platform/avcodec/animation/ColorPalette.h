#pragma once

#include "avcodec/animation/ColorHistogram.h"

#include <QColor>

#include <utility>
#include <vector>

namespace av
{

/// Maps each bin of a histogram to a color of a palette.
struct PaletteMatch {
    std::vector<quint8> indexOfBin;
    double meanError = 0; ///< mean squared color distance (sum of the channels) per pixel, without that inside bins
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

    /// The best palette of at most `limit` (1 to 256) colors for a histogram; exact if the histogram has no more bins.
    static ColorPalette bestFor(const ColorHistogram &histogram, int limit);

    const std::vector<QRgb> &colors() const { return m_colors; }
    PaletteMatch match(const ColorHistogram &histogram) const;

    /// The same colors, ordered so that every prefix is a good palette for the histogram.
    ColorPalette ordered(const ColorHistogram &histogram) const;

    /// The first `count` colors, or all if there are fewer.
    ColorPalette prefix(std::size_t count) const;

private:
    std::vector<QRgb> m_colors;
};

} // namespace av
