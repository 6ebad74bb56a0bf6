#pragma once

#include <QDateTime>
#include <QLatin1String>
#include <QMap>
#include <QString>
#include <QStringList>

namespace kel
{

/// Names of the sound files of a recording. A source, KelRecordingFiles::kSystemAudio or kMicrophone, has one file for
/// the whole recording, "SOURCE_yyyyMMdd_hhmmss.wav", which is joined at the end from a part for each stretch between
/// pauses, "SOURCE_yyyyMMdd_hhmmss_partN.wav".

/// The file of a source whose recording begins at `start`.
QString soundFilePath(const QString &voiceDir, QLatin1String source, const QDateTime &start);

/// Part `number` of the sound file `soundFile`.
QString soundPartPath(const QString &soundFile, int number);

/// The file in `voiceDir` that holds a source: the newest complete one or, in a recording that was interrupted before
/// its parts were joined, the first part. Empty when there is none.
QString findSoundFile(const QString &voiceDir, QLatin1String source);

/// Every part in `voiceDir`, whether or not its sound file exists: paths by sound file and part number.
QMap<QString, QMap<int, QString>> findSoundParts(const QString &voiceDir);

/// Names of the parts of `soundFile` on disk.
QStringList remainingParts(const QString &soundFile);

} // namespace kel
