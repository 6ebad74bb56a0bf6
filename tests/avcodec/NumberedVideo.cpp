#include "avcodec/NumberedVideo.h"

#include "support/HostProgram.h"

#include <QDebug>
#include <QPainter>

namespace NumberedVideo
{

namespace
{

constexpr int kBlock = 20;
constexpr int kColumns = kWidth / kBlock;
constexpr int kBits = 2 * kColumns; // the second row of blocks is the complement of the first

QRect block(int index)
{
    return {index % kColumns * kBlock, index / kColumns * kBlock, kBlock, kBlock};
}

} // namespace

QImage image(int number)
{
    QImage result(kWidth, kHeight, QImage::Format_RGB32);
    result.fill(QColor(40, 90, 160));
    QPainter painter(&result);
    for (int i = 0; i < kBits; ++i) {
        const bool bit = number >> (i % kColumns) & 1;
        painter.fillRect(block(i), bit != (i >= kColumns) ? Qt::white : Qt::black);
    }
    // Motion makes frames depend on each other.
    painter.fillRect(number * 3 % kWidth, 48, 30, 40, QColor(220, 120, number * 5 % 256));
    return result;
}

int numberIn(const QImage &image)
{
    if (image.width() != kWidth || image.height() != kHeight)
        return -1;
    int number = 0;
    for (int i = 0; i < kColumns; ++i) {
        const bool bit = qGray(image.pixel(block(i).center())) > 127;
        const bool complement = qGray(image.pixel(block(i + kColumns).center())) > 127;
        if (bit == complement)
            return -1;
        number |= int(bit) << i;
    }
    return number;
}

bool write(const QString &path, int count, const QStringList &options)
{
    QByteArray pixels;
    for (int i = 0; i < count; ++i) {
        const QImage frame = image(i);
        pixels.append(reinterpret_cast<const char *>(frame.constBits()), int(frame.sizeInBytes()));
    }
    const QStringList input{"-f", "rawvideo", "-pixel_format", "bgr0", "-video_size", "160x96", "-framerate", "30",
                            "-i", "-"};
    return runFfmpeg(input + options + QStringList{path}, pixels);
}

bool runFfmpeg(const QStringList &arguments, const QByteArray &input)
{
    return HostProgram::run("ffmpeg", QStringList{"-v", "error", "-y"} + arguments, input).succeeded;
}

} // namespace NumberedVideo
