#include "avcodec/DecodedAnimation.h"

#include "avcodec/DecodedVideo.h"

#include <QFile>
#include <QtEndian>

#include <webp/demux.h>

#include <numeric>

namespace
{

QImage imageOf(const AVFrame &frame)
{
    QImage::Format format = QImage::Format_Invalid;
    switch (frame.format) {
    case AV_PIX_FMT_BGRA:
        format = QImage::Format_ARGB32;
        break;
    case AV_PIX_FMT_RGBA:
        format = QImage::Format_RGBA8888;
        break;
    case AV_PIX_FMT_RGB24:
        format = QImage::Format_RGB888;
        break;
    default:
        return {};
    }
    return QImage(frame.data[0], frame.width, frame.height, frame.linesize[0], format)
        .copy()
        .convertToFormat(QImage::Format_ARGB32);
}

/// The number of plays, which the readers do not expose.
int playsOf(const QByteArray &bytes)
{
    if (bytes.startsWith("GIF89a")) {
        const int extension = bytes.indexOf(QByteArrayLiteral("NETSCAPE2.0\x03\x01"));
        if (extension < 0)
            return 1;
        const int repetitions = qFromLittleEndian<quint16>(bytes.constData() + extension + 13);
        return repetitions == 0 ? 0 : repetitions + 1;
    }
    return int(qFromBigEndian<quint32>(bytes.constData() + bytes.indexOf("acTL") + 8));
}

} // namespace

DecodedAnimation::DecodedAnimation(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        errorString = file.errorString();
        return;
    }
    const QByteArray bytes = file.readAll();
    if (bytes.startsWith("RIFF")) {
        errorString = readWebp(bytes);
        return;
    }
    errorString = read(path);
    plays = playsOf(bytes);
    // The readers accept files without a trailer.
    if (errorString.isEmpty() && !bytes.endsWith(';') && !bytes.endsWith("IEND\xae\x42\x60\x82"))
        errorString = "No trailer";
}

QString DecodedAnimation::readWebp(const QByteArray &bytes)
{
    if (qFromLittleEndian<quint32>(bytes.constData() + 4) + 8 != quint32(bytes.size()))
        return QString("The file has %1 bytes").arg(bytes.size());
    const WebPData data{reinterpret_cast<const quint8 *>(bytes.constData()), std::size_t(bytes.size())};
    WebPAnimDecoderOptions options;
    WebPAnimDecoderOptionsInit(&options);
    options.color_mode = MODE_RGBA;
    const std::unique_ptr<WebPAnimDecoder, decltype(&WebPAnimDecoderDelete)> decoder(
        WebPAnimDecoderNew(&data, &options), WebPAnimDecoderDelete);
    WebPAnimInfo info;
    if (!decoder || !WebPAnimDecoderGetInfo(decoder.get(), &info))
        return "Not an animated WebP";
    plays = int(info.loop_count);
    int before = 0;
    while (WebPAnimDecoderHasMoreFrames(decoder.get())) {
        quint8 *pixels = nullptr;
        int end = 0;
        if (!WebPAnimDecoderGetNext(decoder.get(), &pixels, &end))
            return QString("Frame %1 is damaged").arg(frames.size());
        frames.push_back(QImage(pixels, int(info.canvas_width), int(info.canvas_height), QImage::Format_RGBA8888)
                             .convertToFormat(QImage::Format_ARGB32));
        durationsMs.push_back(end - before);
        before = end;
    }
    return frames.size() == info.frame_count ? QString() : QString("Frames are missing");
}

QString DecodedAnimation::read(const QString &path)
{
    DecodedVideo video(path);
    durationsMs = video.durationsMs;
    for (const av::Frame &frame : video.frames)
        frames.push_back(imageOf(*frame));
    return video.errorString;
}

double DecodedAnimation::totalMs() const
{
    return std::accumulate(durationsMs.begin(), durationsMs.end(), 0.0);
}

QImage DecodedAnimation::at(double ms) const
{
    double end = 0;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        end += durationsMs[i];
        if (ms < end)
            return frames[i];
    }
    return {};
}
