#pragma once

#include "avcodec/animation/AnimationFormat.h"

#include <optional>
#include <vector>

namespace av
{

/// Animated WebP, written chunk by chunk as the frames come in.
class WebpFormat : public AnimationFormat
{
public:
    /// A RIFF file states its size, without the first 8 bytes, in 32 bits.
    static constexpr qint64 kMaxFileBytes = 0xfffffff6 + Q_INT64_C(8);

    /// For `quality` see webpEncoder.
    explicit WebpFormat(int quality, qint64 maxFileBytes = kMaxFileBytes);

    Limits limits() const override;
    void analyzeFirstFrame(const FrameDelta &) override {}
    EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &frame, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    bool isPhotograph(const FrameDelta &delta, int lossySize, const std::atomic<bool> &cancelled) const;
    std::optional<std::vector<QRgb>> pixelsInFewColors(const FrameDelta &delta) const;
    QByteArray lossy(const FrameDelta &delta, const std::atomic<bool> &cancelled) const;

    const int m_quality;
    const double m_maxPaletteError; // mean squared color distance per pixel
    const qint64 m_maxFileBytes;
    bool m_hasAlpha = false;
};

} // namespace av
