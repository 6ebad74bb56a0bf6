#pragma once

#include "avcodec/decode/FrameCache.h"
#include "avcodec/decode/FrameConverter.h"
#include "avcodec/decode/VideoDemuxer.h"

#include <QByteArray>
#include <QImage>
#include <QString>

namespace av
{

/// Decodes the frames of a video file by number. Continues from its current position if that is shorter, otherwise
/// starts at the nearest keyframe; frames decoded on the way are cached.
class FrameDecoder
{
public:
    struct Options {
        QString logName;        ///< name of the class in log messages
        AVCodecID codec;        ///< the only codec that is accepted
        QByteArray decoderName; ///< FFmpeg's name of the decoder; empty: the default one for the codec
        QByteArray deviceType;  ///< FFmpeg's name of the hardware to decode with; empty: none
    };

    explicit FrameDecoder(Options options);

    /// False, with the reason in `error`, if the file cannot be decoded.
    bool open(const QString &path, QString *error);

    const QString &logName() const { return m_options.logName; }

    /// Null on failure.
    QImage decode(int number);

    QSize frameSize() const;
    double framesPerSecond() const { return m_demuxer.framesPerSecond(); }
    int frameCount() const { return m_demuxer.index().frameCount(); }

    /// Number of frames that the codec has decoded so far, requested or not.
    quint64 decodedFrames() const { return m_decodedFrames; }

private:
    bool openCodec(const QByteArray &deviceType);
    bool fetch(int number);
    void restartAt(int sample);
    bool advanceTo(int number);
    void feed();
    void accept(Frame frame);
    void warnOfSoftwareFallback();

    const Options m_options;
    VideoDemuxer m_demuxer;
    CodecContext m_codec;
    FrameCache m_cache;
    FrameConverter m_converter;
    quint64 m_decodedFrames = 0;

    // State of the codec:
    bool m_running = false;  // it can continue
    bool m_failed = false;   // an error occurred since the last request
    bool m_draining = false; // it has received all samples
    int m_nextSample = 0;    // to be sent to it next
    int m_firstNumber = 0;   // frames before this one lack their references
    int m_lastNumber = -1;   // last frame received from it
};

} // namespace av
