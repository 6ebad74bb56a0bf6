#include "screen/CursorShape.h"

#include <QCryptographicHash>

#include <algorithm>

namespace kel
{

namespace
{

// 64 bits of the digest identify the few shapes of a recording and keep file names short.
constexpr int kTypeBytes = 8;

QByteArray typeOf(const QImage &image, const QPoint &hotspot)
{
    const qint32 header[] = {image.width(), image.height(), hotspot.x(), hotspot.y()};
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(reinterpret_cast<const char *>(header), sizeof header);
    hash.addData(reinterpret_cast<const char *>(image.constBits()), int(image.sizeInBytes()));
    return hash.result().left(kTypeBytes).toHex();
}

} // namespace

KelCursorShape cursorShape(QImage image, const QPoint &hotspot, double ratio)
{
    const QRgb *pixels = reinterpret_cast<const QRgb *>(image.constBits());
    if (std::none_of(pixels, pixels + image.sizeInBytes() / sizeof(QRgb), [](QRgb pixel) { return qAlpha(pixel) > 0; }))
        return {};
    image.setDevicePixelRatio(ratio);
    return {QString::fromLatin1(typeOf(image, hotspot)), QPixmap::fromImage(image), hotspot};
}

} // namespace kel
