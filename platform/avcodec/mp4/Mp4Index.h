#pragma once

#include "avcodec/mp4/Mp4Muxer.h"
#include "avcodec/mp4/MuxerBuffer.h"

#include <QByteArray>

namespace av
{

/// Builds the "moov" box of an ordinary MP4 file whose pictures lie at known places of the file.
class Mp4Index
{
public:
    explicit Mp4Index(const Mp4VideoTrack &track);

    /// Adds a picture whose bytes begin at `offset`.
    void add(const EncodedVideoFrame &picture, qint64 offset);

    /// The box with all pictures; empty when anything failed. Ends the work.
    QByteArray finish();

private:
    // The muxer writes the pictures into a file that nobody keeps, at their places in the real one; of all that,
    // only the box is caught.
    MuxerBuffer m_file;
    Mp4Muxer m_muxer;
    bool m_isValid;
};

} // namespace av
