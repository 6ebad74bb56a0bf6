#pragma once

#include <QImage>
#include <QPoint>

namespace kel
{

/// Copies all of `from` (QImage::Format_RGB32) to the place `to` of `image`, where it must fit. Systems leave the
/// highest byte of a pixel as it comes; in `image` it says that the pixel is opaque.
void copyOpaque(const QImage &from, const QPoint &to, QImage &image);

} // namespace kel
