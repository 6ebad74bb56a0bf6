#pragma once

#include "avcodec/animation/AnimationFormat.h"

#include <optional>
#include <vector>

namespace av
{

/// Animated WebP, written chunk by chunk as frames come.
class WebpFormat : public AnimationFormat
{
public:
    /// A RIFF file states its size in 32 bits, not counting the first 8 bytes.
    static constexpr qint64 kMaxFileBytes = 0xfffffff6 + Q_INT64_C(8);

    /// What the qualities mean is told at webpEncoder. `maxFileBytes`: bytes.
    explicit WebpFormat(int quality, qint64 maxFileBytes = kMaxFileBytes);

    Limits limits() const override;
    void analyzeFirstFrame(const FrameDelta &) override {}
    EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const override;
    bool writeHeader(OutputFile &file, QSize size, int plays) override;
    bool writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks) override;
    bool writeTrailer(OutputFile &file) override;

private:
    bool isHopeless(const FrameDelta &delta, int lossySize, const std::atomic<bool> &cancelled) const;
    std::optional<std::vector<QRgb>> fewColors(const FrameDelta &delta) const;
    QByteArray lossy(const FrameDelta &delta, const std::atomic<bool> &cancelled) const;

    const int m_quality;
    const double m_paletteError;
    const qint64 m_maxFileBytes;
    bool m_hasAlpha = false;
};

} // namespace av
