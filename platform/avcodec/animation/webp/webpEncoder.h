#pragma once

#include "avcodec/animation/AnimationEncoder.h"

/// Writes an animated WebP.
///
/// Quality 100 is lossless: the frames equal the pictures bit for bit. Below, each frame is compressed in the way that
/// suits it. Text, windows and gradients stay sharp, in fewer colors where the mean squared distance of a pixel's
/// color (red, green and blue together) stays below (100 - quality)² / 50: 2 at 90, that is 50 dB, and 50 at 50. Where
/// that takes too many bytes, as in photographs, the frame is lossy: at 90 as true as what other programs write by
/// default, and less below.
///
/// Pictures have up to 16383 pixels in each direction. A file cannot grow beyond 4 GiB: it is completed before, and
/// the encoder fails.
class webpEncoder : public av::AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    webpEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
