#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// Encodes 48 kHz stereo into one stream of a file.
class AudioEncoder
{
public:
    static constexpr int kSampleRate = 48'000;

    /// Adds a stream to `output`, whose header has not been written yet. False, with the reason, when that is
    /// impossible.
    bool open(AVCodecID codec, AVFormatContext *output, QString *error);

    /// Samples that encode() takes at once.
    int blockSize() const { return m_blockSize; }

    /// Takes a block; only the last one may be shorter. What comes out of it is written. An AVERROR code, or 0.
    int encode(const float *left, const float *right, int count);

    /// Writes what the encoder still holds.
    int finish() { return send(nullptr); }

private:
    int send(const AVFrame *frame);
    int write();

    av::CodecContext m_encoder;
    av::ResampleContext m_converter; // where the encoder does not take floats
    av::Packet m_packet;
    av::Frame m_frame;
    AVFormatContext *m_output = nullptr;
    AVStream *m_stream = nullptr; // owned by m_output
    int m_blockSize = 0;
    qint64 m_position = 0;
};

} // namespace av
