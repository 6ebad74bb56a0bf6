#pragma once

#include "avcodec/AnimationFormat.h"
#include "avcodec/PngFilter.h"

#include <vector>

/// Animated PNG: lossless, 8 bits a channel. What did not change between the changes of a frame is transparent where
/// that is smaller. An alpha channel would take 8 to 20 % more wherever much changes, so one colour that is not in the
/// first picture stands for transparency all over the file.
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
    QByteArray rows(const std::vector<QRgb> &pixels, int width, png::Filtering filtering) const;
    QByteArray animationControl() const;

    const int m_ticksPerSecond;
    const bool m_isPatient;
    QRgb m_gapColour = 0; // without alpha
    int m_plays = 0;
    quint32 m_frames = 0;
    quint32 m_sequence = 0;
};
