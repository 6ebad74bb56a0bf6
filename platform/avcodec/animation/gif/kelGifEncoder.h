#pragma once

#include "avcodec/animation/AnimationEncoder.h"

/// Writes an animated GIF. Areas of up to 255 colors are exact; others are shown in the 255 colors that fit them best,
/// without dithering.
///
/// Quality 100 is as close to the images as GIF allows. Below, colors may change slightly where that saves bytes: by a
/// squared distance (summed over red, green and blue) of up to 8/100 of (100 - quality)², which is 8 at 90 and 200 at
/// 50. The distance may be larger where 255 colors do not suffice anyway, and in small areas that are not worth a
/// palette of their own.
///
/// A frame lasts at least 1/50 s: above 50 frames per second some images are dropped.
class kelGifEncoder : public av::AnimationEncoder
{
public:
    /// Creates the file, replacing an existing one. `size`: pixels of every image, at most 65535 per side. `fps`: 1 to
    /// 1000. `quality`: 0 to 100. `extra`: "loop=N", see AnimationEncoder. Errors: see isValid().
    kelGifEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
