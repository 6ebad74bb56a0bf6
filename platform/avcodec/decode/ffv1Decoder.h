#pragma once

#include "avcodec/decode/VideoFileDecoder.h"

#include <QString>

/// Decodes a Matroska or MP4 file of FFV1, the lossless format of older recordings.
class ffv1Decoder : public av::VideoFileDecoder
{
public:
    explicit ffv1Decoder(const QString &path);

    /// FFV1 can be decoded on this system.
    static bool isSupported();
};
