#pragma once

#include "avcodec/animation/ColourHistogram.h"

#include <QColor>

#include <utility>
#include <vector>

namespace av
{

/// How the bins of a histogram are shown by the colours of a palette.
struct PaletteMatch {
    std::vector<quint8> indexOfBin;
    double meanError = 0; ///< squared distance of a pixel's colour, all channels together; that inside bins not counted
};

/// Up to 256 colours.
class ColourPalette
{
public:
    ColourPalette() = default;
    explicit ColourPalette(std::vector<QRgb> colours)
        : m_colours(std::move(colours))
    {
    }

    /// The colours that show the histogram best, at most `limit` (1 to 256); exactly its own when they are no more.
    static ColourPalette bestFor(const ColourHistogram &histogram, int limit);

    const std::vector<QRgb> &colours() const { return m_colours; }
    PaletteMatch match(const ColourHistogram &histogram) const;

    /// The same colours in such an order that every beginning of it shows the histogram well.
    ColourPalette ordered(const ColourHistogram &histogram) const;

    /// The first `count` colours, or all if they are not more.
    ColourPalette beginning(std::size_t count) const;

private:
    std::vector<QRgb> m_colours;
};

} // namespace av
