#pragma once

#include <QString>

/// Encodes a little video in an export format and looks whether it decodes to the same pictures.
namespace kel::FormatCheck
{

/// 0 MP4, 1 GIF, 2 APNG, 3 WebP.
constexpr int FormatCount = 4;

QString name(int format);

/// What is wrong, in one line; empty when nothing is. `path` is the file that is written.
QString run(int format, const QString &path);

} // namespace kel::FormatCheck
