#pragma once

#include "avcodec/animation/AnimationEncoder.h"

/// Writes an animated GIF. Areas of up to 255 colors are shown exactly, others with the 255 colors that suit them
/// best, without dithering.
///
/// Quality 100 is the closest that this can come to the pictures. Below, colors may change a little where that saves
/// bytes: by a squared distance (red, green and blue together) of up to 8/100 of (100 - quality)², that is 8 at 90 and
/// 200 at 50, by more where 255 colors are not enough and colors are approximated anyway, and in small areas for
/// which a palette of their own would not pay.
///
/// A frame lasts 2 hundredths of a second at least: above 50 frames a second some pictures are left out.
class kelGifEncoder : public av::AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    kelGifEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
