#pragma once

#include <QString>

namespace kel
{

/// Writes the part from `startMs` to `endMs` of a sound file to `outputPath`, whose suffix chooses the format; below 0
/// stands for the beginning and the end. Returns `outputPath`, or an empty string after a warning in the log; an
/// existing file is replaced only when the new one is whole.
QString createTrimmedAudioFile(const QString &audioPath, int startMs, int endMs, const QString &outputPath);

} // namespace kel
