#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QSharedPointer>
#include <QString>

#include <vector>

class QIODevice;
struct AudioTrack;

namespace av
{

/// Decodes one source of a mix and resamples it to 48 kHz stereo. Its range begins and ends at the exact sample.
class AudioReader
{
public:
    static constexpr int kSampleRate = 48'000;

    /// False, with the reason in `error`, if the file has no audio that can be read.
    bool open(const AudioTrack &track, QString *error);

    /// Reads the next `count` samples of each channel. Returns how many there were; fewer than `count` only at the end.
    /// Samples are finite.
    int read(float *left, float *right, int count);

    /// Upper bound of the samples that read() returns in total, estimated from the duration stated by the file.
    qint64 expectedLength() const;

private:
    void setRange(const AudioTrack &track);
    bool openDecoder(QString *error);
    bool openResampler(QString *error);
    void seekNearRange();
    int take(float *left, float *right, int count);
    bool refill();
    bool decode();
    void resample(const AVFrame *frame);

    QSharedPointer<QIODevice> m_device; ///< null when a file is read
    IoContext m_input;                  ///< reads m_device
    FormatContext m_format;
    AVStream *m_stream = nullptr; // owned by m_format
    CodecContext m_decoder;
    ResampleContext m_resampler;
    Packet m_packet;
    Frame m_frame;
    QString m_path;
    qint64 m_begin = 0;         // start of the range, in output samples from the start of the file
    qint64 m_end = 0;           // end of the range, likewise
    qint64 m_silence = 0;       // output samples of silence left before the range
    qint64 m_remaining = 0;     // output samples of the range left to return
    qint64 m_sourceSkip = 0;    // decoded samples left to drop before resampling
    qint64 m_outputSkip = 0;    // resampled samples left to drop
    bool m_isPositioned = true; // m_sourceSkip counts from the first decoded sample, not from the start of the file
    bool m_isDrained = false;
    std::vector<float> m_left; // resampled
    std::vector<float> m_right;
    size_t m_given = 0; // of these, already returned
};

} // namespace av
