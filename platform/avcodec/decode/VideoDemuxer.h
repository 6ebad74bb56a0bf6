#pragma once

#include "avcodec/decode/SampleIndex.h"
#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// Random access to the samples of a file's video track.
class VideoDemuxer
{
public:
    /// Opens the file and indexes its video, which must have the given codec. False, with the reason in `error`, on
    /// failure.
    bool open(const QString &path, AVCodecID codec, QString *error);

    const AVCodecParameters *parameters() const { return m_stream->codecpar; }
    const SampleIndex &index() const { return m_index; }

    /// Frames per second as stated by the file; 0 if it states none.
    double framesPerSecond() const;

    /// Reads a sample. The packet's timestamps are the numbers of its frame (pts; none if it is hidden) and of the
    /// sample (dts). False if the file can no longer be read.
    bool read(int sample, AVPacket *packet);

private:
    bool selectVideo(AVCodecID codec, QString *error);
    std::vector<Sample> samplesFromIndex();
    std::vector<Sample> samplesFromPackets();
    bool readDirectly(const Sample &sample, AVPacket *packet);
    bool readByDemuxing(int sample, AVPacket *packet);

    FormatContext m_format;
    AVStream *m_stream = nullptr; // owned by m_format
    SampleIndex m_index;
    bool m_samplesAreContiguous = false; // a sample's offset and size are those of its bytes in the file
    int m_nextDemuxed = -1;              // sample that the demuxer returns next; -1: unknown
};

} // namespace av
