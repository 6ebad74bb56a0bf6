#include "avcodec/RgbPixels.h"

namespace av
{

QImage withRgbPixels(const QImage &image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32_Premultiplied: // premultiplied with alpha is the same as blended with black
        return image;
    default:
        return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
    }
}

} // namespace av
