#pragma once

#include <QImage>
#include <QTransform>

namespace kel
{

/// The part of `area`, a rectangle of pixels, that `picture` (Format_ARGB32_Premultiplied) covers once `place` has
/// brought its pixels there; transparent beside it. The same everywhere, whereas QPainter's choice among its loops
/// depends on the processor and on how Qt was built. Null when nothing of it lies in the area.
QImage turnedPicture(const QImage &picture, const QTransform &place, const QRect &area);

} // namespace kel
