#pragma once

#include "avcodec/AnimationEncoder.h"

/// Writes an animated PNG, which every program that knows PNG shows at least the first picture of.
///
/// From quality 75 on it is lossless: the frames equal the pictures bit for bit. From 50 to 74 colours are rounded to
/// 7 bits a channel, from 25 to 49 to 6, below to 5, with smaller files each time; black and white stay as they are.
class pngEncoder : public AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    pngEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
