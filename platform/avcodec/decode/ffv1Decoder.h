#pragma once

#include "avcodec/decode/VideoFileDecoder.h"

#include <QString>

/// Decodes FFV1, the lossless codec of older recordings, from Matroska or MP4.
class ffv1Decoder : public av::VideoFileDecoder
{
public:
    /// Opens the file. On failure, logs the reason; the decoder is invalid then.
    explicit ffv1Decoder(const QString &path);

    /// FFV1 can be decoded on this system.
    static bool isSupported();
};
