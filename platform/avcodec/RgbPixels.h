#pragma once

#include <QImage>

namespace av
{

/// The image in a format whose pixels are 0xAARRGGBB with opaque colors, translucent ones blended with black. Shares
/// the pixels of the image if it already has such a format.
QImage withRgbPixels(const QImage &image);

} // namespace av
