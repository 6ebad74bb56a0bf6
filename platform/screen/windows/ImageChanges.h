#pragma once

#include <QImage>
#include <QRegion>

namespace kel
{

/// The region where two images of the same size (QImage::Format_RGB32) differ, as one rectangle per band of lines.
QRegion changedRegion(const QImage &before, const QImage &after);

} // namespace kel
