#pragma once

#include "screen/KelCursorPixmap.h"

#include <QImage>

namespace kel
{

/// The shape that a picture (QImage::Format_ARGB32_Premultiplied) makes on a screen of that device pixel ratio, named
/// after its content. A picture in which nothing is visible makes the empty shape.
KelCursorShape cursorShape(QImage image, const QPoint &hotspot, double ratio);

} // namespace kel
