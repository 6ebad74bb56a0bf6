#include "avcodec/DecodedVideo.h"

#include <QFile>
#include <QPainter>
#include <QtEndian>

#include <cmath>

DecodedVideo::DecodedVideo(const QString &path)
{
    errorString = read(path);
}

QString DecodedVideo::read(const QString &path)
{
    AVDictionary *options = nullptr; // of GIF: the durations stated by the file
    av_dict_set(&options, "min_delay", "0", 0);
    av_dict_set(&options, "max_fps", "0", 0);
    AVFormatContext *opened = nullptr;
    const AVInputFormat *apng = path.endsWith("png") ? av_find_input_format("apng") : nullptr;
    const int opening = avformat_open_input(&opened, path.toUtf8(), apng, &options);
    const av::Dictionary unused(options);
    if (opening < 0)
        return av::errorText(opening);
    const av::FormatContext format(opened);
    if (format->nb_streams != 1)
        return QString("%1 streams").arg(format->nb_streams);
    const AVStream *stream = format->streams[0];
    statedFrames = stream->nb_frames;
    fps = av_q2d(stream->avg_frame_rate);
    containerColorSpace = stream->codecpar->color_space;
    containerColorRange = stream->codecpar->color_range;

    const av::CodecContext codec(avcodec_alloc_context3(avcodec_find_decoder(stream->codecpar->codec_id)));
    avcodec_parameters_to_context(codec.get(), stream->codecpar);
    codec->err_recognition = AV_EF_EXPLODE | AV_EF_CRCCHECK;
    if (const int code = avcodec_open2(codec.get(), nullptr, nullptr); code < 0)
        return av::errorText(code);

    const auto receive = [&] {
        for (;;) {
            av::Frame frame(av_frame_alloc());
            const int code = avcodec_receive_frame(codec.get(), frame.get());
            if (code < 0)
                return code == AVERROR(EAGAIN) || code == AVERROR_EOF ? 0 : code;
            const AVRational frameTime = av_inv_q(stream->r_frame_rate.num ? stream->r_frame_rate : av_make_q(30, 1));
            times.push_back(av_rescale_q(frame->best_effort_timestamp, stream->time_base, frameTime));
            frames.push_back(std::move(frame));
        }
    };
    const av::Packet packet(av_packet_alloc());
    int code = 0;
    while ((code = av_read_frame(format.get(), packet.get())) == 0) {
        keyframes.push_back(packet->flags & AV_PKT_FLAG_KEY);
        durationsMs.push_back(double(packet->duration) * 1000 * av_q2d(stream->time_base));
        code = avcodec_send_packet(codec.get(), packet.get());
        av_packet_unref(packet.get());
        if (code == 0)
            code = receive();
        if (code < 0)
            return QString("Frame %1: %2").arg(frames.size()).arg(av::errorText(code));
    }
    if (code != AVERROR_EOF)
        return av::errorText(code);
    avcodec_send_packet(codec.get(), nullptr);
    code = receive();
    return code < 0 ? av::errorText(code) : QString();
}

QImage DecodedVideo::rgbImage(int index) const
{
    const AVFrame *frame = frames.at(std::size_t(index)).get();
    if (frame->format != AV_PIX_FMT_GBRP)
        return {};
    QImage image(frame->width, frame->height, QImage::Format_RGB32);
    for (int y = 0; y < frame->height; ++y)
        for (int x = 0; x < frame->width; ++x)
            image.setPixel(x, y, qRgb(sample(index, 2, x, y), sample(index, 0, x, y), sample(index, 1, x, y)));
    return image;
}

int DecodedVideo::sample(int frame, int plane, int x, int y) const
{
    const AVFrame *f = frames.at(std::size_t(frame)).get();
    return f->data[plane][y * f->linesize[plane] + x];
}

Yuv Yuv::of(QRgb pixel)
{
    const double r = qRed(pixel) / 255.0;
    const double g = qGreen(pixel) / 255.0;
    const double b = qBlue(pixel) / 255.0;
    const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    return {16 + 219 * y, 128 + 224 * (b - y) / 1.8556, 128 + 224 * (r - y) / 1.5748};
}

double DecodedVideo::lumaPsnr(int frame, const QImage &wanted) const
{
    double sum = 0;
    for (int y = 0; y < wanted.height(); ++y)
        for (int x = 0; x < wanted.width(); ++x)
            sum += std::pow(sample(frame, 0, x, y) - Yuv::of(wanted.pixel(x, y)).y, 2);
    const double mean = sum / (wanted.width() * wanted.height());
    return mean > 0 ? 10 * std::log10(255 * 255 / mean) : kLossless;
}

QList<QByteArray> mp4Boxes(const QString &path)
{
    QFile file(path);
    QList<QByteArray> types;
    if (!file.open(QIODevice::ReadOnly))
        return types;
    while (!file.atEnd()) {
        const qint64 begin = file.pos();
        const QByteArray header = file.read(16);
        if (header.size() < 8)
            return types << "?";
        qint64 size = qFromBigEndian<quint32>(header.constData());
        if (size == 1 && header.size() == 16)
            size = qFromBigEndian<qint64>(header.constData() + 8);
        types << header.mid(4, 4);
        if (size < 8 || begin + size > file.size() || !file.seek(begin + size))
            return types << "?";
    }
    return types;
}

double psnr(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return 0;
    const QImage first = a.convertToFormat(QImage::Format_RGB888);
    const QImage second = b.convertToFormat(QImage::Format_RGB888);
    qint64 sum = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int i = 0; i < 3 * a.width(); ++i)
            sum += qint64(std::pow(first.constScanLine(y)[i] - second.constScanLine(y)[i], 2));
    return sum == 0 ? kLossless : 10 * std::log10(255.0 * 255.0 * 3 * a.width() * a.height() / double(sum));
}

QImage textImage(const QSize &size, int number)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font("DejaVu Sans");
    font.setPixelSize(9);
    font.setHintingPreference(QFont::PreferNoHinting); // makes the rendering independent of the system
    painter.setFont(font);
    const QColor colors[] = {Qt::red, Qt::blue, Qt::darkGreen, Qt::black, Qt::magenta, QColor(200, 120, 0)};
    for (int line = 0; line * 12 < size.height() + number * 3 + 12; ++line) {
        painter.setPen(colors[line % 6]);
        painter.drawText(2 + line % 5, line * 12 - number * 3,
                         QString("%1 The quick brown fox jumps over the lazy dog ").arg(line).repeated(6));
    }
    return image;
}
