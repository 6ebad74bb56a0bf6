#pragma once

#include "avcodec/animation/AnimationEncoder.h"

/// Writes an animated PNG, which every program that knows PNG shows at least the first picture of.
///
/// It is lossless whatever the quality: the frames equal the pictures bit for bit. Below 75 it takes several times
/// the time for a file that is some hundredths smaller.
///
/// In rare cases the file is written anew half-way, under its name with ".opaque" behind, and takes the place of the
/// first in one step: a file of gaps in which a picture comes to have the very color that stands for them.
class pngEncoder : public av::AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    pngEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
