#pragma once

#include "avcodec/AnimationFormat.h"

/// Animated PNG: lossless, 8 bits a channel. Pixels that did not change may be transparent, which takes an alpha
/// channel. Where the first picture is a photograph that channel would cost more than it gains, so there is none.
class ApngFormat : public AnimationFormat
{
public:
    /// What the qualities mean is told at pngEncoder.
    ApngFormat(int fps, int quality);

    Limits limits() const override;
    void prepare(const PictureDelta &first) override;
    EncodedFrame encode(const PictureDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    enum class Way { PlainWithGaps, FilteredOpaque };

    QByteArray filteredRows(const PictureDelta &delta, Way way) const;
    QByteArray animationControl() const;

    const int m_fps;
    const int m_droppedBits; // of each channel
    int m_pixelBytes = 4;
    int m_plays = 0;
    quint32 m_frames = 0;
    quint32 m_sequence = 0;
};
