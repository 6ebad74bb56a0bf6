#pragma once

#include "avcodec/animation/FrameDelta.h"

#include <vector>

namespace av
{

/// Counts the colors of the changed pixels of a delta. Exact for few colors; with many, similar colors share a bin.
class ColorHistogram
{
public:
    struct Bin {
        float red = 0; // mean of all pixels in the bin
        float green = 0;
        float blue = 0;
        float count = 0;
    };

    explicit ColorHistogram(const FrameDelta &delta);

    const std::vector<Bin> &bins() const { return m_bins; }

    /// Total of all bins.
    double pixelCount() const { return m_pixelCount; }

    /// Index of the bin that holds a color; -1 if none does.
    int binOf(QRgb color) const;

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

    quint32 keyOf(QRgb color) const;
    std::size_t slotIndexOf(quint32 key) const;
    Sum &sumOf(QRgb color);
    void coarsen();

    double m_pixelCount = 0;
    int m_shift = 0; // low bits of each channel that are ignored
    std::vector<Slot> m_slots;
    std::vector<Sum> m_sums;
    std::vector<Bin> m_bins;
};

} // namespace av
