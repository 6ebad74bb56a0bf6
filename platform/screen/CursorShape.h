#pragma once

#include "screen/KelCursorPixmap.h"

#include <QImage>

namespace kel
{

/// The pointer shape of an image (QImage::Format_ARGB32_Premultiplied) on a screen with that device pixel ratio. Its
/// type is a hash of the content. The shape of a fully transparent image is empty.
KelCursorShape cursorShape(QImage image, const QPoint &hotspot, double ratio);

} // namespace kel
