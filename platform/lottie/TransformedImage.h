#pragma once

#include <QImage>
#include <QTransform>

namespace kel
{

/// The pixels of `area` after `transform` has mapped `image` (Format_ARGB32_Premultiplied) into its coordinate system;
/// transparent where the image does not reach. Bilinear, and the same to the bit on every machine, whereas the result
/// of QPainter depends on the processor and on the build of Qt. Null for an empty area or without memory.
QImage transformedImage(const QImage &image, const QTransform &transform, const QRect &area);

} // namespace kel
