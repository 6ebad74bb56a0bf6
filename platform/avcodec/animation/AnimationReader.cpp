#include "avcodec/animation/AnimationReader.h"

#include "avcodec/decode/FrameConverter.h"
#include "avcodec/ffmpeg/AvHandles.h"
#include "avcodec/ffmpeg/InputFile.h"

#include <QFile>

#include <webp/demux.h>

namespace av
{

namespace
{

std::vector<QImage> readWebp(QFile &file, int limit, QString *error)
{
    const WebPData data{file.map(0, file.size()), std::size_t(file.size())}; // mapped: it may have up to 4 GiB
    if (!data.bytes) {
        *error = file.errorString();
        return {};
    }
    WebPAnimDecoderOptions options;
    WebPAnimDecoderOptionsInit(&options);
    options.color_mode = MODE_RGBA;
    const std::unique_ptr<WebPAnimDecoder, decltype(&WebPAnimDecoderDelete)> decoder(
        WebPAnimDecoderNew(&data, &options), WebPAnimDecoderDelete);
    WebPAnimInfo info;
    if (!decoder || !WebPAnimDecoderGetInfo(decoder.get(), &info)) {
        *error = QStringLiteral("not a WebP animation");
        return {};
    }
    std::vector<QImage> frames;
    while (int(frames.size()) < limit && WebPAnimDecoderHasMoreFrames(decoder.get())) {
        quint8 *pixels = nullptr;
        int endMs = 0;
        if (!WebPAnimDecoderGetNext(decoder.get(), &pixels, &endMs)) {
            *error = QStringLiteral("frame %1 is damaged").arg(frames.size());
            return {};
        }
        frames.push_back(QImage(pixels, int(info.canvas_width), int(info.canvas_height), QImage::Format_RGBA8888)
                             .convertToFormat(QImage::Format_RGB32));
    }
    return frames;
}

std::vector<QImage> readGifOrApng(const QString &path, int limit, QString *error)
{
    const FormatContext format = openInput(path, "gif,apng", error);
    if (!format)
        return {};
    const AVCodecParameters *parameters = format->nb_streams > 0 ? format->streams[0]->codecpar : nullptr;
    const AVCodec *known = parameters ? avcodec_find_decoder(parameters->codec_id) : nullptr;
    const CodecContext codec(known ? avcodec_alloc_context3(known) : nullptr);
    if (!codec || avcodec_parameters_to_context(codec.get(), parameters) < 0) {
        *error = QStringLiteral("no decoder available");
        return {};
    }
    codec->thread_count = 1; // several would delay the frames
    int result = avcodec_open2(codec.get(), nullptr, nullptr);
    const Packet packet(av_packet_alloc());
    const Frame frame(av_frame_alloc());
    FrameConverter converter;
    std::vector<QImage> frames;
    while (result >= 0 && int(frames.size()) < limit) {
        result = av_read_frame(format.get(), packet.get());
        if (result < 0)
            break;
        result = avcodec_send_packet(codec.get(), packet.get());
        av_packet_unref(packet.get());
        if (result >= 0)
            result = avcodec_receive_frame(codec.get(), frame.get());
        if (result >= 0)
            frames.push_back(converter.convert(*frame));
    }
    if (result < 0 && result != AVERROR_EOF) {
        *error = errorText(result);
        return {};
    }
    return frames;
}

} // namespace

std::vector<QImage> AnimationReader::read(const QString &path, int limit, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return {};
    }
    return file.peek(4) == "RIFF" ? readWebp(file, limit, error) : readGifOrApng(path, limit, error);
}

} // namespace av
