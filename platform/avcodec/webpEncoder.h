#pragma once

#include "avcodec/AnimationEncoder.h"

/// Writes an animated WebP.
///
/// Quality 100 is lossless: the frames equal the pictures bit for bit. Below, each frame is either that or lossy,
/// whichever is smaller; the fidelity of lossy ones falls with the quality, 90 being what other programs call 75.
///
/// Pictures have up to 16383 pixels in each direction. A file cannot grow beyond 4 GiB: it is completed before, and
/// the encoder fails.
class webpEncoder : public AnimationEncoder
{
public:
    /// `extra`: "loop=N", see AnimationEncoder.
    webpEncoder(QSize size, const QString &path, int fps, int quality, const QString &extra);
};
