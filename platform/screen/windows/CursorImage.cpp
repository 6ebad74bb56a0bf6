#include "screen/windows/CursorImage.h"

#include <algorithm>

namespace kel
{

namespace
{

constexpr QRgb kBlack = 0xff000000;
constexpr QRgb kWhite = 0xffffffff;
constexpr QRgb kTransparent = 0;
// A marker for inverting pixels, with a value that is invalid in a premultiplied image.
constexpr QRgb kInverting = 0x00ffffff;

QRgb *line(QImage &image, int y)
{
    return reinterpret_cast<QRgb *>(image.scanLine(y));
}

const QRgb *line(const QImage &image, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y));
}

bool isSet(QRgb pixel)
{
    return (pixel & 1) != 0;
}

bool isInverting(const QImage &image, int x, int y)
{
    return image.rect().contains(x, y) && line(image, y)[x] == kInverting;
}

/// An image cannot invert the screen. Black with a white outline is visible on any background.
void replaceInverting(QImage &image)
{
    QImage result = image;
    for (int y = 0; y < image.height(); ++y) {
        QRgb *target = line(result, y);
        const QRgb *source = line(qAsConst(image), y);
        for (int x = 0; x < image.width(); ++x) {
            if (source[x] == kInverting)
                target[x] = kBlack;
            else if (source[x] == kTransparent && (isInverting(image, x - 1, y) || isInverting(image, x + 1, y) ||
                                                   isInverting(image, x, y - 1) || isInverting(image, x, y + 1)))
                target[x] = kWhite;
        }
    }
    image = result;
}

} // namespace

QImage CursorImage::fromColors(const QImage &colors, const QImage &mask)
{
    const QRgb *pixels = reinterpret_cast<const QRgb *>(colors.constBits());
    if (std::any_of(pixels, pixels + colors.sizeInBytes() / sizeof(QRgb), [](QRgb pixel) { return qAlpha(pixel) > 0; }))
        return QImage(colors.constBits(), colors.width(), colors.height(), colors.bytesPerLine(), QImage::Format_ARGB32)
            .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage image(colors.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb color = line(colors, y)[x] | kBlack;
            const bool isClear = y < mask.height() && x < mask.width() && isSet(line(mask, y)[x]);
            line(image, y)[x] = !isClear ? color : color == kBlack ? kTransparent : kInverting;
        }
    }
    replaceInverting(image);
    return image;
}

QImage CursorImage::fromMasks(const QImage &masks)
{
    const int height = masks.height() / 2;
    QImage image(masks.width(), height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool isClear = isSet(line(masks, y)[x]);
            const bool isWhite = isSet(line(masks, y + height)[x]);
            line(image, y)[x] = isClear ? (isWhite ? kInverting : kTransparent) : (isWhite ? kWhite : kBlack);
        }
    }
    replaceInverting(image);
    return image;
}

} // namespace kel
