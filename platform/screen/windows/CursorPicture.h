#pragma once

#include <QImage>

/// Pictures of the three kinds of pointer that Windows has, QImage::Format_ARGB32_Premultiplied.
namespace kel::CursorPicture
{

/// A pointer in colours. `colors` are straight (not premultiplied) ARGB; where no pixel of them has any opacity they
/// know none, and `mask` says: white (its lowest bit) is transparent. A transparent pixel that has a colour inverts
/// what is below it.
QImage fromColors(const QImage &colors, const QImage &mask);

/// A pointer in black and white. The upper half of `masks` says what is transparent, the lower what is white; both
/// together invert what is below them.
QImage fromMasks(const QImage &masks);

} // namespace kel::CursorPicture
