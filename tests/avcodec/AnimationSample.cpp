#include "avcodec/AnimationSample.h"

#include "avcodec/animation/gif/kelGifEncoder.h"
#include "avcodec/animation/png/pngEncoder.h"
#include "avcodec/animation/webp/webpEncoder.h"
#include "support/TestTable.h"

#include <QPainter>

#include <cmath>
#include <random>

namespace
{

QRgb patchColor(uint number)
{
    return qRgb(int(number % 200), int(number * 7 % 200), int(number * 13 % 200) + 50);
}

void paintPatches(QImage &image, uint seed, int count, QSize largest)
{
    std::mt19937 random(seed);
    QPainter painter(&image);
    for (int i = 0; i < count; ++i) {
        const QPoint corner(int(random() % uint(image.width())), int(random() % uint(image.height())));
        const QSize size(1 + int(random() % uint(largest.width())), 1 + int(random() % uint(largest.height())));
        painter.fillRect(QRect(corner, size), QColor(patchColor(random() % 200)));
    }
}

} // namespace

std::unique_ptr<KelAVCodecEncoder> makeAnimationEncoder(const QString &format, QSize size, const QString &path, int fps,
                                                        int quality, const QString &extra)
{
    if (format == "gif")
        return std::make_unique<kelGifEncoder>(size, path, fps, quality, extra);
    if (format == "png")
        return std::make_unique<pngEncoder>(size, path, fps, quality, extra);
    return std::make_unique<webpEncoder>(size, path, fps, quality, extra);
}

QImage patches(QSize size, int frame)
{
    const int chapter = frame / 20;                                 // everything changes between chapters
    const int change = frame % 20 / 7 * 7 + std::min(frame % 7, 4); // no change in three frames out of seven
    QImage image(size, QImage::Format_RGB32);
    image.fill(patchColor(uint(chapter) * 31));
    paintPatches(image, uint(chapter), 400, {12, 5});
    for (int i = 0; i < change % 20; ++i)
        paintPatches(image, 1000u * uint(chapter) + uint(i), 3, {size.width() / 8 + 1, size.height() / 8 + 1});
    return image;
}

QImage noise(QSize size, uint seed)
{
    std::mt19937 random(seed);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, QRgb(random()) | 0xff000000u);
    return image;
}

QImage landscape(QSize size, int frame)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const double v = y + 5 * frame;
            const double light = 90 + 60 * std::sin(x / 31.0) + 50 * std::cos(v / 23.0) + 20 * std::sin(x * v / 900.0);
            const auto channel = [&](double tint) {
                return std::clamp(int(light + 40 * std::sin(v / 57 + tint)), 0, 255);
            };
            image.setPixel(x, y, qRgb(channel(0), channel(2), channel(4)));
        }
    }
    return image;
}

void addAnimationFormats()
{
    const TestTable<QString> row("format");
    for (const char *format : {"gif", "png", "webp"})
        row(format, format);
}
