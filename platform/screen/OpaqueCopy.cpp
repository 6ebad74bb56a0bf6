#include "screen/OpaqueCopy.h"

#include <algorithm>

namespace kel
{

void copyOpaque(const QImage &from, const QPoint &to, QImage &image)
{
    const std::size_t stride = std::size_t(image.bytesPerLine()) / sizeof(QRgb);
    QRgb *target = reinterpret_cast<QRgb *>(image.bits()) + std::size_t(to.y()) * stride + to.x();
    const int width = from.width();
    const int height = from.height();
    for (int y = 0; y < height; ++y, target += stride) {
        const QRgb *source = reinterpret_cast<const QRgb *>(from.constScanLine(y));
        std::transform(source, source + width, target, [](QRgb pixel) { return pixel | 0xff000000u; });
    }
}

} // namespace kel
