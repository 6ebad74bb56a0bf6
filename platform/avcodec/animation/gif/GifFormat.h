#pragma once

#include "avcodec/animation/AnimationFormat.h"
#include "avcodec/animation/ColourPalette.h"
#include "avcodec/animation/gif/GifLzw.h"

namespace av
{

/// GIF89a. The best colours of the first picture make the global palette; later frames bring a palette of their own
/// where that one does not do.
class GifFormat : public AnimationFormat
{
public:
    /// What the qualities mean is told at kelGifEncoder.
    explicit GifFormat(int quality);

    Limits limits() const override;
    void prepare(const PictureDelta &first) override;
    EncodedFrame encode(const PictureDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    QByteArray smallFrame(const PictureDelta &delta, const ColourHistogram &histogram,
                          const std::atomic<bool> &cancelled) const;
    QByteArray largeFrame(const PictureDelta &delta, const ColourHistogram &histogram,
                          const std::atomic<bool> &cancelled) const;
    QByteArray frame(const PictureDelta &delta, const ColourHistogram &histogram, const ColourPalette &palette,
                     const PaletteMatch &match, bool local, const std::atomic<bool> &cancelled) const;

    const int m_loss;            // 0: as good as possible, to 100
    const double m_errorPerByte; // squared error that a byte is worth
    ColourPalette m_palette;
};

} // namespace av
