#pragma once

#include "avcodec/animation/PictureDelta.h"

#include <vector>

namespace av
{

/// How often each colour occurs among the changed pixels of a delta. Exact while there are few colours; where there
/// are many, neighbouring ones share a bin.
class ColourHistogram
{
public:
    struct Bin {
        float red = 0; // the mean of all pixels in the bin
        float green = 0;
        float blue = 0;
        float count = 0;
    };

    explicit ColourHistogram(const PictureDelta &delta);

    const std::vector<Bin> &bins() const { return m_bins; }

    /// Of all bins together.
    double pixelCount() const { return m_pixelCount; }

    /// The bin of a colour, -1 when it has none.
    int binOf(QRgb colour) const;

private:
    struct Sum {
        quint64 red = 0;
        quint64 green = 0;
        quint64 blue = 0;
        quint64 count = 0;
    };
    struct Slot {
        quint32 key;
        qint32 bin;
    };

    quint32 keyOf(QRgb colour) const;
    const Slot &slotOf(quint32 key) const;
    Sum &sumOf(QRgb colour);
    void coarsen();

    double m_pixelCount = 0;
    int m_shift = 0; // bits of each channel that are left out
    std::vector<Slot> m_slots;
    std::vector<Sum> m_sums;
    std::vector<Bin> m_bins;
};

} // namespace av
