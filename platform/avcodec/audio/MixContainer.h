#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// What a file with a certain suffix is made of.
struct MixContainer {
    const char *suffix;
    const char *muxer;
    AVCodecID soundCodec;
    bool hasPicture;

    /// Null for a suffix that no mix can be written to.
    static const MixContainer *ofFile(const QString &path);
};

} // namespace av
