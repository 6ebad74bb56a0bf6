#include "lottie/TurnedPicture.h"

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

// Places in the picture are counted in steps of 1/65536 pixel.
constexpr int stepBits = 16;
constexpr double stepsPerPixel = 1 << stepBits;
constexpr double maxPixels = 1e9; // beyond every picture, within the numbers

qint64 steps(double pixels)
{
    return std::llround(std::clamp(pixels, -maxPixels, maxPixels) * stepsPerPixel);
}

/// Between two colours, `share` 256ths on the way to the second. Two channels at a time have room in 32 bits.
quint32 between(quint32 first, quint32 second, quint32 share)
{
    constexpr quint32 channels = 0x00ff00ff;
    constexpr quint32 half = 0x00800080;
    const auto mix = [share](quint32 a, quint32 b) {
        return (((a & channels) * (256 - share) + (b & channels) * share + half) >> 8) & channels;
    };
    return mix(first >> 8, second >> 8) << 8 | mix(first, second);
}

class Sampler
{
public:
    explicit Sampler(const QImage &picture)
        : m_pixels(reinterpret_cast<const quint32 *>(picture.constBits()))
        , m_stride(picture.bytesPerLine() / int(sizeof(quint32)))
        , m_width(picture.width())
        , m_height(picture.height())
    {
    }

    /// The colour at a place, among the four pixels whose centres surround it.
    quint32 at(qint64 x, qint64 y) const
    {
        const qint64 column = x >> stepBits, row = y >> stepBits;
        if (column < -1 || row < -1 || column >= m_width || row >= m_height)
            return 0;
        const auto shareX = quint32(x >> (stepBits - 8) & 0xff), shareY = quint32(y >> (stepBits - 8) & 0xff);
        return between(between(pixel(column, row), pixel(column + 1, row), shareX),
                       between(pixel(column, row + 1), pixel(column + 1, row + 1), shareX), shareY);
    }

private:
    quint32 pixel(qint64 column, qint64 row) const
    {
        const bool isInside = column >= 0 && row >= 0 && column < m_width && row < m_height;
        return isInside ? m_pixels[row * m_stride + column] : 0;
    }

    const quint32 *m_pixels;
    qint64 m_stride;
    qint64 m_width;
    qint64 m_height;
};

} // namespace

QImage turnedPicture(const QImage &picture, const QTransform &place, const QRect &area)
{
    if (area.isEmpty())
        return {};
    QImage turned(area.size(), QImage::Format_ARGB32_Premultiplied);
    if (turned.isNull())
        return {};
    const QTransform back = place.inverted();
    const qint64 stepX = steps(back.m11()), stepY = steps(back.m12());
    const Sampler sampler(picture);
    for (int row = 0; row < area.height(); ++row) {
        const QPointF start = back.map(QPointF(area.x() + 0.5, area.y() + row + 0.5)) - QPointF(0.5, 0.5);
        qint64 x = steps(start.x()), y = steps(start.y());
        auto *line = reinterpret_cast<quint32 *>(turned.scanLine(row));
        for (int column = 0; column < area.width(); ++column, x += stepX, y += stepY)
            line[column] = sampler.at(x, y);
    }
    return turned;
}

} // namespace kel
