#pragma once

#include "avcodec/AnimationEncoder.h"

/// Writes an animated PNG, which every program that knows PNG shows at least the first picture of.
///
/// It is lossless whatever the quality: the frames equal the pictures bit for bit, but for one garish green that is not
/// in the first picture and stands for transparency; where a later one has it, its blue is a step off. Below 75 it
/// takes several times the time for a file that is some hundredths smaller.
class pngEncoder : public AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    pngEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
