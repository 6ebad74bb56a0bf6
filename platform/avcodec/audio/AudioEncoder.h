#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

namespace av
{

/// Encodes 48 kHz stereo into a stream of a file.
class AudioEncoder
{
public:
    static constexpr int kSampleRate = 48'000;

    /// Adds a stream to `output`, before its header is written. False, with the reason in `error`, on failure.
    bool open(AVCodecID codec, AVFormatContext *output, QString *error);

    /// Number of samples per channel that encode() takes per call.
    int blockSize() const { return m_blockSize; }

    /// Encodes a block and writes the resulting packets. Only the last block may be shorter. An AVERROR code, or 0.
    int encode(const float *left, const float *right, int count);

    /// Writes what the encoder has delayed. An AVERROR code, or 0.
    int finish() { return send(nullptr); }

private:
    int send(const AVFrame *frame);
    int write();

    CodecContext m_encoder;
    ResampleContext m_converter; // null if the encoder takes planar floats
    Packet m_packet;
    Frame m_frame;
    AVFormatContext *m_output = nullptr;
    AVStream *m_stream = nullptr; // owned by m_output
    int m_blockSize = 0;
    qint64 m_position = 0;
};

} // namespace av
