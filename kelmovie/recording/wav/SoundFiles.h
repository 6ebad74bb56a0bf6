#pragma once

#include <QDateTime>
#include <QLatin1String>
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

/// What is on disk of the sound of a source.
struct StoredSound {
    QString whole;             ///< the sound file; empty when there is none
    QStringList parts;         ///< its parts, or those of a sound file that does not exist, ordered by number
    bool hasFirstPart = false; ///< part 0 is among them
};

/// Finds the newest sound of a source in `voiceDir`.
StoredSound findSound(const QString &voiceDir, QLatin1String source);

/// Names of the parts of `soundFile` on disk.
QStringList remainingParts(const QString &soundFile);

} // namespace kel
