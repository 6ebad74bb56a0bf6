#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// Muxer and audio codec for a file name suffix.
struct MixContainer {
    const char *suffix;
    const char *muxer;
    AVCodecID audioCodec;
    bool hasVideo;

    /// Null if no mix can be written to files with this suffix.
    static const MixContainer *ofFile(const QString &path);
};

} // namespace av
