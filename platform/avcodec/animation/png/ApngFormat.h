#pragma once

#include "avcodec/animation/AnimationFormat.h"

#include <optional>

namespace av
{

/// Animated PNG: lossless, 8 bits per channel. Unchanged pixels inside a frame are transparent where that is smaller.
///
/// An alpha channel would add 8 to 20 % wherever much changes. Instead, one color stands for transparency in the whole
/// file. It is chosen at the first frame with transparent pixels, as a color no frame has used so far. If a later frame
/// uses it, all frames are rewritten without transparency, and the next frame with transparent pixels chooses another
/// color.
class ApngFormat : public AnimationFormat
{
public:
    /// For `quality` see pngEncoder.
    ApngFormat(int fps, int quality);

    Limits limits() const override;
    void analyzeFirstFrame(const FrameDelta &) override {}
    EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool prepareToWrite(OutputFile &file, const EncodedFrame &frame, const std::atomic<bool> &cancelled) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &frame, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    bool copyWithoutTransparency(const QString &from, OutputFile &to, const std::atomic<bool> &cancelled) const;
    QByteArray animationControl() const;

    const int m_ticksPerSecond;
    const int m_quality;
    std::optional<QRgb> m_transparentColor; // as stated in the file, without alpha; none: all frames are opaque
    int m_plays = 0;
    quint32 m_frames = 0;
    quint32 m_sequence = 0;
};

} // namespace av
