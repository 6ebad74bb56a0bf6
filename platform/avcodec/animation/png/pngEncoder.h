#pragma once

#include "avcodec/animation/AnimationEncoder.h"

/// Writes an animated PNG. Programs that support only still PNGs show its first frame.
///
/// Lossless at any quality. Below 75, encoding takes several times as long for a file that is a few percent smaller.
///
/// In rare cases the file is rewritten midway, as PATH.opaque, which then replaces it in one step: when a frame uses
/// the color that stands for transparency in the file.
class pngEncoder : public av::AnimationEncoder
{
public:
    /// Creates the file, replacing an existing one. `size`: pixels of every image, at most 32767 per side. `fps`: 1 to
    /// 1000; above 90, some images are dropped. `quality`: 0 to 100. `extra`: "loop=N", see AnimationEncoder. Errors:
    /// see isValid().
    pngEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
