#include "recording/KelRecordingState.h"

#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/RecordingLock.h"

#include <QFileInfo>

#include <algorithm>

namespace
{
// A recording in progress without a lock is written to about once a second, unless it is paused.
constexpr int kQuietSeconds = 10;

bool isQuiet(const QString &dir)
{
    return KelRecordingState::lastWritten(dir).secsTo(QDateTime::currentDateTime()) > kQuietSeconds;
}
} // namespace

bool KelRecordingState::holdsRecording(const QString &dir)
{
    return QFileInfo::exists(KelRecordingMetadata::filePath(dir)) ||
           QFileInfo(KelRecordingFiles::videoPath(dir)).size() > 0;
}

QDateTime KelRecordingState::lastWritten(const QString &dir)
{
    QDateTime latest;
    for (const QString &path : {KelRecordingMetadata::filePath(dir), KelRecordingFiles::videoPath(dir)}) {
        const QFileInfo file(path);
        if (file.exists())
            latest = latest.isValid() ? std::max(latest, file.lastModified()) : file.lastModified();
    }
    return latest;
}

KelRecordingState::State KelRecordingState::stateOf(const QString &dir)
{
    const kel::FileLock::State lock = kel::RecordingLock::stateOf(dir);
    if (lock == kel::FileLock::State::Held)
        return State::InProgress;
    // Metadata is first written at the start; a recording without it died before that.
    const bool hasMetadata = QFileInfo::exists(KelRecordingMetadata::filePath(dir));
    KelRecordingMetadata metadata;
    if (hasMetadata && (!KelRecordingMetadata::load(dir, &metadata) || metadata.complete))
        return State::Complete;
    return lock == kel::FileLock::State::Abandoned || isQuiet(dir) ? State::Interrupted : State::InProgress;
}
