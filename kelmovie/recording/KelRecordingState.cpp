#include "recording/KelRecordingState.h"

#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"

#include <QFileInfo>

#include <algorithm>

namespace
{
// A recording in progress is written to about once a second.
constexpr int kQuietSeconds = 10;
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
    // Metadata is first written a second after the start; a recording without it died before that.
    const bool hasMetadata = QFileInfo::exists(KelRecordingMetadata::filePath(dir));
    KelRecordingMetadata metadata;
    if (hasMetadata && (!KelRecordingMetadata::load(dir, &metadata) || metadata.complete))
        return State::Complete;
    const bool isQuiet = lastWritten(dir).secsTo(QDateTime::currentDateTime()) > kQuietSeconds;
    return isQuiet ? State::Interrupted : State::InProgress;
}
