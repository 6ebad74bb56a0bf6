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
constexpr int kBits = 2 * kColumns; // the second row of blocks is the complement of the first one

QRect block(int index)
{
    return {index % kColumns * kBlock, index / kColumns * kBlock, kBlock, kBlock};
}

} // namespace

QImage picture(int number)
{
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(QColor(40, 90, 160));
    QPainter painter(&image);
    for (int i = 0; i < kBits; ++i) {
        const bool bit = number >> (i % kColumns) & 1;
        painter.fillRect(block(i), bit != (i >= kColumns) ? Qt::white : Qt::black);
    }
    // Something that moves, so that frames do refer to each other.
    painter.fillRect(number * 3 % kWidth, 48, 30, 40, QColor(220, 120, number * 5 % 256));
    return image;
}

int numberIn(const QImage &picture)
{
    if (picture.width() != kWidth || picture.height() != kHeight)
        return -1;
    int number = 0;
    for (int i = 0; i < kColumns; ++i) {
        const bool bit = qGray(picture.pixel(block(i).center())) > 127;
        const bool complement = qGray(picture.pixel(block(i + kColumns).center())) > 127;
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
        const QImage image = picture(i);
        pixels.append(reinterpret_cast<const char *>(image.constBits()), int(image.sizeInBytes()));
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
