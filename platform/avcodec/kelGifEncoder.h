#pragma once

#include "avcodec/AnimationEncoder.h"

/// Writes an animated GIF. Areas of up to 255 colours are shown exactly, others with the 255 colours that suit them
/// best, without dithering.
///
/// Quality 100 is the closest that this can come to the pictures. Below, colours may change a little where that saves
/// bytes: by a squared distance (red, green and blue together) of up to 400 · (1 - quality / 100)², that is 4 at 90
/// and 100 at 50, and by more where 255 colours are not enough and colours are approximated anyway.
///
/// A frame lasts 2 hundredths of a second at least: above 50 frames a second some pictures are left out.
class kelGifEncoder : public AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    kelGifEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
