#pragma once

#include <QString>

/// Encodes a small video in an export format and checks that it decodes to the same frames.
namespace kel::FormatCheck
{

/// 0 MP4, 1 GIF, 2 APNG, 3 WebP.
constexpr int kFormatCount = 4;

QString name(int format);

/// Runs the check, which writes the file `path`. Returns the problem in one line, or an empty string.
QString run(int format, const QString &path);

} // namespace kel::FormatCheck
