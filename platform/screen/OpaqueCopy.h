#pragma once

#include <QImage>
#include <QPoint>

namespace kel
{

/// Copies `from` (QImage::Format_RGB32) into `image` at `to`, where it must fit, and makes it opaque: systems leave the
/// highest byte of each pixel undefined.
void copyOpaque(const QImage &from, const QPoint &to, QImage &image);

} // namespace kel
