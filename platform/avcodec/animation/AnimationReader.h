#pragma once

#include <QImage>
#include <QString>

#include <vector>

/// Reads GIF, APNG and WebP animations.
namespace av::AnimationReader
{

/// The first `limit` frames of a file at most, composed to complete opaque images. Empty, with the reason in `error`,
/// if the file has another format or is damaged.
std::vector<QImage> read(const QString &path, int limit, QString *error);

} // namespace av::AnimationReader
