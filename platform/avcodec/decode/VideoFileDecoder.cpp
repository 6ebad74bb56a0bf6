#include "avcodec/decode/VideoFileDecoder.h"

#include "avcodec/decode/FrameDecoder.h"
#include "logging/PlatformLog.h"

#include <QDebug>

#include <utility>

namespace av
{

VideoFileDecoder::VideoFileDecoder() = default;
VideoFileDecoder::~VideoFileDecoder() = default;

void VideoFileDecoder::open(std::unique_ptr<FrameDecoder> decoder, const QString &path)
{
    QString error;
    if (decoder->open(path, &error))
        m_decoder = std::move(decoder);
    else
        qCWarning(kel::logCodec).noquote()
            << QStringLiteral("[%1] cannot open %2: %3").arg(decoder->logName(), path, error);
}

void VideoFileDecoder::close()
{
    m_decoder.reset();
}

bool VideoFileDecoder::isValid() const
{
    return m_decoder != nullptr;
}

QImage VideoFileDecoder::decodeFrame(int index)
{
    return m_decoder ? m_decoder->decode(index) : QImage();
}

QSize VideoFileDecoder::getFrameSize() const
{
    return m_decoder ? m_decoder->frameSize() : QSize();
}

double VideoFileDecoder::getFPS() const
{
    return m_decoder ? m_decoder->framesPerSecond() : 0.0;
}

int VideoFileDecoder::getFrameCount() const
{
    return m_decoder ? m_decoder->frameCount() : 0;
}

quint64 VideoFileDecoder::decodedFrames() const
{
    return m_decoder ? m_decoder->decodedFrames() : 0;
}

} // namespace av
