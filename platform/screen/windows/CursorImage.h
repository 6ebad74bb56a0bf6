#pragma once

#include <QImage>

/// Converts pointers of Windows into images of QImage::Format_ARGB32_Premultiplied.
namespace kel::CursorImage
{

/// A color pointer. `colors` is straight (not premultiplied) ARGB. When all its alpha values are 0, `mask` determines
/// the transparent pixels: those with the lowest bit set. A transparent pixel with a color other than black inverts the
/// screen below it.
QImage fromColors(const QImage &colors, const QImage &mask);

/// A monochrome pointer. The upper half of `masks` selects transparent pixels, the lower half white ones; pixels set in
/// both invert the screen below them.
QImage fromMasks(const QImage &masks);

} // namespace kel::CursorImage
