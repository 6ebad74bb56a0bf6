#include "lottie/TransformedImage.h"

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

// Positions in the image are fixed-point numbers in units of 1/65536 pixel.
constexpr int kSubpixelBits = 16;
constexpr double kStepsPerPixel = 1 << kSubpixelBits;
constexpr double kMaxPixels = 1e9; // larger than any image, still within the range of qint64

qint64 toFixedPoint(double pixels)
{
    return std::llround(std::clamp(pixels, -kMaxPixels, kMaxPixels) * kStepsPerPixel);
}

/// Interpolates between two colors; `weight` is that of the second in 256ths. Two channels are computed at a time in 32
/// bits.
quint32 interpolate(quint32 first, quint32 second, quint32 weight)
{
    constexpr quint32 kChannelMask = 0x00ff00ff;
    constexpr quint32 kHalf = 0x00800080;
    const auto mix = [weight](quint32 a, quint32 b) {
        return (((a & kChannelMask) * (256 - weight) + (b & kChannelMask) * weight + kHalf) >> 8) & kChannelMask;
    };
    return mix(first >> 8, second >> 8) << 8 | mix(first, second);
}

class Sampler
{
public:
    explicit Sampler(const QImage &image)
        : m_pixels(reinterpret_cast<const quint32 *>(image.constBits()))
        , m_stride(image.bytesPerLine() / int(sizeof(quint32)))
        , m_width(image.width())
        , m_height(image.height())
    {
    }

    /// The color at a position, interpolated from the four nearest pixel centers.
    quint32 at(qint64 x, qint64 y) const
    {
        const qint64 column = x >> kSubpixelBits, row = y >> kSubpixelBits;
        if (column < -1 || row < -1 || column >= m_width || row >= m_height)
            return 0;
        const auto weightX = quint32(x >> (kSubpixelBits - 8) & 0xff),
                   weightY = quint32(y >> (kSubpixelBits - 8) & 0xff);
        return interpolate(interpolate(pixel(column, row), pixel(column + 1, row), weightX),
                           interpolate(pixel(column, row + 1), pixel(column + 1, row + 1), weightX), weightY);
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

QImage transformedImage(const QImage &image, const QTransform &transform, const QRect &area)
{
    if (area.isEmpty())
        return {};
    QImage result(area.size(), QImage::Format_ARGB32_Premultiplied);
    if (result.isNull())
        return {};
    const QTransform back = transform.inverted();
    const qint64 stepX = toFixedPoint(back.m11()), stepY = toFixedPoint(back.m12());
    const Sampler sampler(image);
    for (int row = 0; row < area.height(); ++row) {
        const QPointF start = back.map(QPointF(area.x() + 0.5, area.y() + row + 0.5)) - QPointF(0.5, 0.5);
        qint64 x = toFixedPoint(start.x()), y = toFixedPoint(start.y());
        auto *line = reinterpret_cast<quint32 *>(result.scanLine(row));
        for (int column = 0; column < area.width(); ++column, x += stepX, y += stepY)
            line[column] = sampler.at(x, y);
    }
    return result;
}

} // namespace kel
