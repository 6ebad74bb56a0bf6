#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>
#include <QSize>

namespace av
{

struct EncodedVideoFrame;

/// The H.264 video track of an MP4 file.
struct Mp4VideoTrack {
    QSize size;
    int fps = 0;              ///< timestamps count frames at this rate
    QByteArray configuration; ///< the "avcC" record
    AVColorSpace colorSpace = AVCOL_SPC_UNSPECIFIED;
    AVColorRange colorRange = AVCOL_RANGE_UNSPECIFIED;
};

/// libavformat's MP4 muxer with one H.264 track. The output must outlive it. Functions return an AVERROR code, or 0; an
/// I/O error of the output is returned by the call in which it occurs.
class Mp4Muxer
{
public:
    /// `url` is needed if the muxer has to open the output again ("faststart").
    Mp4Muxer(const Mp4VideoTrack &track, AVIOContext *output, const char *url = "");

    /// `flags`: the muxer's "movflags"; null for a plain file.
    int writeHeader(const char *flags);

    int writeFrame(const EncodedVideoFrame &frame);

    /// Ends the current fragment of a "frag_custom" file.
    int flushFragment();

    int writeTrailer();

private:
    int result(int code) const;

    FormatContext m_context;
    Packet m_packet;
    const int m_fps;
};

} // namespace av
