#pragma once

#include <QString>

namespace kel
{

/// Writes the range from `startMs` to `endMs` of a sound file to `outputPath`, whose suffix selects the format. A
/// negative value means the beginning or the end of the file. Returns `outputPath`, or on failure an empty string after
/// logging a warning. An existing file is replaced only once the new one is complete.
QString createTrimmedAudioFile(const QString &audioPath, int startMs, int endMs, const QString &outputPath);

} // namespace kel
