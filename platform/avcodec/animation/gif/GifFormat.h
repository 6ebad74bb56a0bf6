#pragma once

#include "avcodec/animation/AnimationFormat.h"
#include "avcodec/animation/ColorPalette.h"
#include "avcodec/animation/gif/GifLzw.h"

namespace av
{

/// GIF89a. The global palette is made from the first frame; later frames have a local palette where that is worth its
/// bytes.
class GifFormat : public AnimationFormat
{
public:
    /// For `quality` see kelGifEncoder.
    explicit GifFormat(int quality);

    Limits limits() const override;
    void analyzeFirstFrame(const FrameDelta &first) override;
    EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &frame, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    QByteArray encodeSmall(const FrameDelta &delta, const ColorHistogram &histogram,
                           const std::atomic<bool> &cancelled) const;
    QByteArray encodeLarge(const FrameDelta &delta, const ColorHistogram &histogram,
                           const std::atomic<bool> &cancelled) const;
    QByteArray encodeWith(const ColorPalette &palette, bool isLocal, const PaletteMatch &match, const FrameDelta &delta,
                          const ColorHistogram &histogram, const std::atomic<bool> &cancelled) const;

    const int m_loss;            // 100 - quality
    const double m_errorPerByte; // squared color error that is accepted to save one byte
    ColorPalette m_palette;
};

} // namespace av
