#pragma once

#include "avcodec/animation/AnimationFormat.h"
#include <optional>

namespace av
{

/// Animated PNG: lossless, 8 bits a channel. What did not change between the changes of a frame is transparent where
/// that is smaller. An alpha channel would take 8 to 20 % more wherever much changes, so one color stands for
/// transparency all over the file, from the first frame with gaps on: one that no picture up to there has. Should a
/// later picture have it, all frames are written anew without gaps, and the next frame with gaps settles on another
/// color.
class ApngFormat : public AnimationFormat
{
public:
    /// What the qualities mean is told at pngEncoder.
    ApngFormat(int fps, int quality);

    Limits limits() const override;
    void analyzeFirstFrame(const FrameDelta &) override {}
    EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool prepareToWrite(OutputFile &file, const EncodedFrame &picture, const std::atomic<bool> &cancelled) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    bool copyWithoutTransparency(const QString &from, OutputFile &to, const std::atomic<bool> &cancelled) const;
    QByteArray animationControl() const;

    const int m_ticksPerSecond;
    const int m_quality;
    std::optional<QRgb> m_transparentColor; // that the file names; without alpha
    int m_plays = 0;
    quint32 m_frames = 0;
    quint32 m_sequence = 0;
};

} // namespace av
