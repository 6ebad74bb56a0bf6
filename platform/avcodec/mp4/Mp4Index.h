#pragma once

#include "avcodec/ffmpeg/MuxerBuffer.h"
#include "avcodec/mp4/Mp4Muxer.h"

#include <QByteArray>

namespace av
{

/// Builds the "moov" box of a plain MP4 file for frames that are already in the file.
class Mp4Index
{
public:
    explicit Mp4Index(const Mp4VideoTrack &track);

    /// Adds a frame whose data begins at `offset` of the file.
    void add(const EncodedVideoFrame &frame, qint64 offset);

    /// The box for all frames; empty if an error occurred. Call only once.
    QByteArray finish();

private:
    // The muxer "writes" the frames at their offsets into a buffer that discards everything but the box.
    MuxerBuffer m_file;
    Mp4Muxer m_muxer;
    bool m_isValid;
};

} // namespace av
