#include "selftest/FormatCheck.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "avcodec/animation/AnimationReader.h"
#include "avcodec/decode/h264Decoder.h"
#include "export/KelExportDependencies.h"

#include <QColor>
#include <QImage>
#include <QPainter>

#include <cstdlib>
#include <vector>

namespace kel
{

namespace
{

constexpr int kFrames = 12;
constexpr int kFps = 25;
constexpr int kQuality = 90;
constexpr QSize kSize(96, 64);
constexpr double kTolerance = 12; // mean difference, of 255; lossy formats stay far below

/// A block that moves over a color gradient.
QImage sourceFrame(int frame)
{
    QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    QLinearGradient ramp(0, 0, kSize.width(), kSize.height());
    ramp.setColorAt(0, QColor(20, 60, 120));
    ramp.setColorAt(1, QColor(200, 220, 240));
    painter.fillRect(image.rect(), ramp);
    painter.fillRect(frame * 6, 20, 20, 20, QColor(230, 120, 30));
    return image;
}

QString encode(int format, const QString &path)
{
    const auto encoder = KelExportDependencies::real().createEncoder(format, kSize, path, kFps, kQuality, QString());
    if (!encoder)
        return QStringLiteral("there is no encoder");
    for (int frame = 0; frame < kFrames; ++frame) {
        if (!encoder->addFrame(quint64(frame), sourceFrame(frame)))
            return QStringLiteral("frame %1 was not encoded: %2").arg(frame).arg(encoder->errorString());
    }
    return encoder->close() ? QString() : QStringLiteral("the file was not completed: ") + encoder->errorString();
}

std::vector<QImage> decode(int format, const QString &path, QString *error)
{
    if (format != 0)
        return av::AnimationReader::read(path, kFrames + 1, error);
    h264Decoder decoder(path, h264Decoder::PreferH264DecodeParams(false));
    std::vector<QImage> frames;
    frames.reserve(kFrames);
    for (int frame = 0; frame < decoder.getFrameCount(); ++frame)
        frames.push_back(decoder.decodeFrame(frame));
    if (frames.empty())
        *error = QStringLiteral("H.264 cannot be decoded");
    return frames;
}

/// Mean difference per color channel.
double difference(const QImage &a, const QImage &b)
{
    qint64 sum = 0;
    for (int y = 0; y < kSize.height(); ++y) {
        for (int x = 0; x < kSize.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
        }
    }
    return double(sum) / (3.0 * kSize.width() * kSize.height());
}

} // namespace

QString FormatCheck::name(int format)
{
    static const char *const kNames[] = {"MP4", "GIF", "APNG", "WebP"};
    return QLatin1String(kNames[format]);
}

QString FormatCheck::run(int format, const QString &path)
{
    QString error = encode(format, path);
    if (!error.isEmpty())
        return error;
    const std::vector<QImage> frames = decode(format, path, &error);
    if (!error.isEmpty())
        return error;
    if (int(frames.size()) != kFrames)
        return QStringLiteral("it has %1 frames instead of %2").arg(frames.size()).arg(kFrames);
    for (int frame = 0; frame < kFrames; ++frame) {
        const QImage &decoded = frames[std::size_t(frame)];
        if (decoded.size() != kSize || difference(decoded, sourceFrame(frame)) > kTolerance)
            return QStringLiteral("frame %1 differs from what was encoded").arg(frame);
    }
    return {};
}

} // namespace kel
