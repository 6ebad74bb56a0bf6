#pragma once

#include "avcodec/decode/FrameCache.h"
#include "avcodec/decode/FrameConverter.h"
#include "avcodec/decode/VideoDemuxer.h"

#include <QByteArray>
#include <QImage>
#include <QString>

namespace av
{

/// Decodes the frames of a video file by number. It goes on from where it stands when that is the shorter way, else
/// from the nearest keyframe; what it decodes on the way is kept for the next calls.
class FrameDecoder
{
public:
    struct Options {
        QString logName;        ///< class that log lines speak for
        AVCodecID codec;        ///< the only codec that is accepted
        QByteArray decoderName; ///< FFmpeg's name of the decoder; empty: the codec's own
        QByteArray deviceType;  ///< FFmpeg's name of the hardware to decode with; empty: none
    };

    explicit FrameDecoder(Options options);

    /// False, with the reason, when the file cannot be decoded.
    bool open(const QString &path, QString *error);

    const QString &logName() const { return m_options.logName; }

    /// The frame as an image; null on failure.
    QImage decode(int number);

    QSize frameSize() const;
    double framesPerSecond() const { return m_source.framesPerSecond(); }
    int frameCount() const { return m_source.index().frameCount(); }

    /// Frames that the codec has decoded so far, wanted or not.
    quint64 decodedFrames() const { return m_decodedFrames; }

private:
    bool openCodec(const QByteArray &deviceType);
    bool fetch(int number);
    void restartAt(int sample);
    bool advanceTo(int number);
    void feed();
    void accept(av::Frame frame);
    void warnOfSoftware();

    const Options m_options;
    VideoDemuxer m_source;
    av::CodecContext m_codec;
    FrameCache m_cache;
    FrameConverter m_converter;
    quint64 m_decodedFrames = 0;

    // Where the codec stands.
    bool m_running = false;  // it can go on
    bool m_failed = false;   // something was wrong since the last request
    bool m_draining = false; // it has had all samples
    int m_nextSample = 0;    // to be given to it next
    int m_firstNumber = 0;   // frames before this one lack what they refer to
    int m_lastNumber = -1;   // the last frame that came out
};

} // namespace av
