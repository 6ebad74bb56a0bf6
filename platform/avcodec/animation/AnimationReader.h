#pragma once

#include <QImage>
#include <QString>

#include <vector>

/// Reads animations back: GIF, APNG and WebP.
namespace av::AnimationReader
{

/// The pictures of a file as they are seen one after the other, the first `limit` at most. Empty, with the reason, when
/// the file is none of these or damaged. Opaque.
std::vector<QImage> read(const QString &path, int limit, QString *error);

} // namespace av::AnimationReader
