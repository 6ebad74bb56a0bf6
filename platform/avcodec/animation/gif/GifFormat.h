#pragma once

#include "avcodec/animation/AnimationFormat.h"
#include "avcodec/animation/ColorPalette.h"
#include "avcodec/animation/gif/GifLzw.h"

namespace av
{

/// GIF89a. The best colors of the first picture make the global palette; later frames bring a palette of their own
/// where that one does not do.
class GifFormat : public AnimationFormat
{
public:
    /// What the qualities mean is told at kelGifEncoder.
    explicit GifFormat(int quality);

    Limits limits() const override;
    void analyzeFirstFrame(const FrameDelta &first) override;
    EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    QByteArray smallFrame(const FrameDelta &delta, const ColorHistogram &histogram,
                          const std::atomic<bool> &cancelled) const;
    QByteArray largeFrame(const FrameDelta &delta, const ColorHistogram &histogram,
                          const std::atomic<bool> &cancelled) const;
    QByteArray frame(const FrameDelta &delta, const ColorHistogram &histogram, const ColorPalette &palette,
                     const PaletteMatch &match, bool local, const std::atomic<bool> &cancelled) const;

    const int m_loss;            // 0: as good as possible, to 100
    const double m_errorPerByte; // squared error that a byte is worth
    ColorPalette m_palette;
};

} // namespace av
