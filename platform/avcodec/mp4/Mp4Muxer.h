#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>
#include <QSize>

namespace av
{

struct EncodedVideoFrame;

/// What an MP4 file states about its one H.264 video track.
struct Mp4VideoTrack {
    QSize size;
    int fps = 0;              ///< time stamps count frames at this rate
    QByteArray configuration; ///< the "avcC" record
    AVColorSpace colorSpace = AVCOL_SPC_UNSPECIFIED;
    AVColorRange colorRange = AVCOL_RANGE_UNSPECIFIED;
};

/// libavformat's MP4 muxer with one H.264 track. The output must outlive it. Results are AVERROR codes, 0 for success;
/// an error of the output itself is among them, at the call in which it happens.
class Mp4Muxer
{
public:
    /// `url` is needed where the muxer opens the output again by itself.
    Mp4Muxer(const Mp4VideoTrack &track, AVIOContext *output, const char *url = "");

    /// `flags` is the muxer's "movflags"; null for an ordinary file.
    int writeHeader(const char *flags);

    int writeFrame(const EncodedVideoFrame &picture);

    /// Ends the present fragment ("frag_custom" files).
    int flushFragment();

    int writeTrailer();

private:
    int result(int code) const;

    av::FormatContext m_context;
    av::Packet m_packet;
    const int m_fps;
};

} // namespace av
