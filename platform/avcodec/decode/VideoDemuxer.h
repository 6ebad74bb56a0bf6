#pragma once

#include "avcodec/decode/SampleIndex.h"
#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// The video track of a file on disk: what it is and its samples, read in any order.
class VideoDemuxer
{
public:
    /// Opens the file and indexes its video, which must be of the given codec. False, with the reason, when it is not.
    bool open(const QString &path, AVCodecID codec, QString *error);

    const AVCodecParameters *parameters() const { return m_stream->codecpar; }
    const SampleIndex &index() const { return m_index; }

    /// Frames a second as the file states them; 0 when it does not.
    double framesPerSecond() const;

    /// Reads a sample as it is stored. False when the file no longer yields it.
    bool read(int sample, AVPacket *packet);

private:
    bool selectVideo(AVCodecID codec, QString *error);
    std::vector<Sample> samplesOfDemuxer();
    std::vector<Sample> samplesOfPackets();
    bool readDirectly(const Sample &sample, AVPacket *packet);
    bool readByDemuxer(int sample, AVPacket *packet);

    av::FormatContext m_format;
    AVStream *m_stream = nullptr; // owned by m_format
    SampleIndex m_index;
    bool m_samplesAreRaw = false; // position and size of a sample are those of its bytes in the file
    int m_nextOfDemuxer = -1;     // the sample that the demuxer yields next; -1: unknown
};

} // namespace av
