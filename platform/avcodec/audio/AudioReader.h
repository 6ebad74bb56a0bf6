#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QString>

#include <vector>

struct AudioTrack;

namespace av
{

/// One track of a mix, decoded and brought to 48 kHz stereo. Its range begins and ends at exactly the right sample.
class AudioReader
{
public:
    static constexpr int kSampleRate = 48'000;

    /// False, with the reason, when the file holds no sound that can be read.
    bool open(const AudioTrack &track, QString *error);

    /// The next `count` samples of both channels, or fewer at the end: how many. Samples are finite.
    int read(float *left, float *right, int count);

    /// Samples that read() will give at most, as far as the file tells.
    qint64 expectedLength() const;

private:
    void setRange(const AudioTrack &track);
    bool openDecoder(QString *error);
    bool openResampler(QString *error);
    void seekNear();
    int take(float *left, float *right, int count);
    bool refill();
    bool decode();
    void resample(const AVFrame *frame);

    av::FormatContext m_format;
    AVStream *m_stream = nullptr; // owned by m_format
    av::CodecContext m_decoder;
    av::ResampleContext m_resampler;
    av::Packet m_packet;
    av::Frame m_frame;
    QString m_path;
    qint64 m_begin = 0;         // of the range, in output samples of the file
    qint64 m_end = 0;           // likewise
    qint64 m_silence = 0;       // output samples yet to come before the range
    qint64 m_remaining = 0;     // output samples of the range yet to be given
    qint64 m_sourceSkip = 0;    // decoded samples to drop before the resampler sees any
    qint64 m_outputSkip = 0;    // resampled samples to drop
    bool m_isPositioned = true; // m_sourceSkip counts from the first decoded sample
    bool m_isDrained = false;
    std::vector<float> m_left; // resampled and not yet given
    std::vector<float> m_right;
    size_t m_given = 0; // of them
};

} // namespace av
