#pragma once

#include <QString>

class QFile;

namespace kel
{

/// Opens `name` in the directory of a track, which is RECORDING/TRACK, for reading. A recording may come from anywhere,
/// so only an ordinary file that is really inside of it is opened; no link is followed. Returns a null string on
/// success, otherwise an error text.
QString openTrackFile(QFile *file, const QString &trackDir, const QString &name);

} // namespace kel
