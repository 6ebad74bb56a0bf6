#include "screen/windows/CursorPicture.h"

#include <algorithm>

namespace kel
{

namespace
{

constexpr QRgb black = 0xff000000;
constexpr QRgb white = 0xffffffff;
constexpr QRgb transparent = 0;
// A colour that no premultiplied picture has, for as long as what it stands for is not decided.
constexpr QRgb inverting = 0x00ffffff;

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
    return image.rect().contains(x, y) && line(image, y)[x] == inverting;
}

/// A picture cannot invert what is below it. Black with a white edge is seen on any ground, too.
void replaceInverting(QImage &image)
{
    QImage result = image;
    for (int y = 0; y < image.height(); ++y) {
        QRgb *target = line(result, y);
        const QRgb *source = line(qAsConst(image), y);
        for (int x = 0; x < image.width(); ++x) {
            if (source[x] == inverting)
                target[x] = black;
            else if (source[x] == transparent && (isInverting(image, x - 1, y) || isInverting(image, x + 1, y) ||
                                                  isInverting(image, x, y - 1) || isInverting(image, x, y + 1)))
                target[x] = white;
        }
    }
    image = result;
}

} // namespace

QImage CursorPicture::fromColors(const QImage &colors, const QImage &mask)
{
    const QRgb *pixels = reinterpret_cast<const QRgb *>(colors.constBits());
    if (std::any_of(pixels, pixels + colors.sizeInBytes() / sizeof(QRgb), [](QRgb pixel) { return qAlpha(pixel) > 0; }))
        return QImage(colors.constBits(), colors.width(), colors.height(), colors.bytesPerLine(), QImage::Format_ARGB32)
            .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage picture(colors.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb color = line(colors, y)[x] | black;
            const bool isClear = y < mask.height() && x < mask.width() && isSet(line(mask, y)[x]);
            line(picture, y)[x] = !isClear ? color : color == black ? transparent : inverting;
        }
    }
    replaceInverting(picture);
    return picture;
}

QImage CursorPicture::fromMasks(const QImage &masks)
{
    const int height = masks.height() / 2;
    QImage picture(masks.width(), height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool isClear = isSet(line(masks, y)[x]);
            const bool isWhite = isSet(line(masks, y + height)[x]);
            line(picture, y)[x] = isClear ? (isWhite ? inverting : transparent) : (isWhite ? white : black);
        }
    }
    replaceInverting(picture);
    return picture;
}

} // namespace kel
