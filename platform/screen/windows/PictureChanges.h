#pragma once

#include <QImage>
#include <QRegion>

namespace kel
{

/// Where two pictures of the same size differ, in rectangles of at least a band's height: found for a system that does
/// not tell what was drawn. Both are QImage::Format_RGB32.
QRegion changedRegion(const QImage &before, const QImage &after);

} // namespace kel
