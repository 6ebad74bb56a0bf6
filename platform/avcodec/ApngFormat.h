#pragma once

#include "avcodec/AnimationFormat.h"

/// Animated PNG: lossless, 8 bits a channel, without alpha: it would let what did not change inside of a frame's
/// rectangle be transparent, but takes 8 to 20 % more all over the file where much changes.
class ApngFormat : public AnimationFormat
{
public:
    /// What the qualities mean is told at pngEncoder.
    ApngFormat(int fps, int quality);

    Limits limits() const override;
    void prepare(const PictureDelta &) override {}
    EncodedFrame encode(const PictureDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    QByteArray animationControl() const;

    const int m_ticksPerSecond;
    const bool m_isPatient;
    int m_plays = 0;
    quint32 m_frames = 0;
    quint32 m_sequence = 0;
};
