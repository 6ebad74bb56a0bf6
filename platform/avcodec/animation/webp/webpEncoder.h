#pragma once

#include "avcodec/animation/AnimationEncoder.h"

/// Writes an animated WebP.
///
/// Quality 100 is lossless. Below, each frame is compressed in the way that suits it. Text, windows and gradients stay
/// sharp; their colors are reduced as long as the mean squared color distance of a pixel (summed over red, green and
/// blue) stays below (100 - quality)² / 50, which is 2 (50 dB) at 90 and 50 at 50. Where that takes too many bytes, as
/// in photographs, the frame is lossy: at 90 about as good as the default of other programs, and less below.
///
/// A file cannot grow beyond 4 GiB: it is finished before that limit, and encoding fails.
class webpEncoder : public av::AnimationEncoder
{
public:
    /// Creates the file, replacing an existing one. `size`: pixels of every image, at most 16383 per side. `fps`: 1 to
    /// 1000; above 90, some images are dropped. `quality`: 0 to 100. `extra`: "loop=N", see AnimationEncoder. Errors:
    /// see isValid().
    webpEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
