#pragma once

#include "avcodec/AnimationEncoder.h"

/// Writes an animated PNG, which every program that knows PNG shows at least the first picture of.
///
/// It is lossless: the frames equal the pictures bit for bit, whatever the quality. Below 75 it takes several times the
/// time for a file that is some hundredths smaller.
class pngEncoder : public AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    pngEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
