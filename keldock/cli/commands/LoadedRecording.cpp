#include "cli/commands/LoadedRecording.h"

#include "cli/terminal/MessageLog.h"
#include "common/ComposedFrame.h"
#include "common/DirectorySize.h"

#include <KelMovie/KelPlaybackTrackManager.h>
#include <KelMovie/KelRecordingFiles.h>

#include <QDir>
#include <QFileInfo>

LoadedRecording::LoadedRecording(const QString &directory)
    : m_directory(directory)
{
    const QFileInfo info(directory);
    if (!info.exists()) {
        m_error = QStringLiteral("there is no directory '%1'").arg(directory);
        return;
    }
    if (!info.isDir()) {
        m_error = QStringLiteral("'%1' is not a directory").arg(directory);
        return;
    }
    const bool hasFile = QFileInfo::exists(KelRecordingMetadata::filePath(directory));
    if (!hasFile && tracksPresent().isEmpty()) {
        m_error = QStringLiteral("'%1' does not contain a recording").arg(directory);
        return;
    }
    m_hasMetadata = hasFile && KelRecordingMetadata::load(directory, &m_metadata);
    if (!m_recorder.loadRecording(directory, KelPlaybackRules::recommended()))
        m_error = QStringLiteral("'%1' cannot be loaded: %2").arg(directory, MessageLog::firstCritical());
    else if (!manager()->isValidRecording())
        m_error = QStringLiteral("'%1' cannot be played: %2").arg(directory, manager()->errorString());
}

QString LoadedRecording::warning() const
{
    if (!m_hasMetadata) {
        return QStringLiteral("%1 is missing or damaged; assuming %2 fps")
            .arg(KelRecordingFiles::kMetadata, QString::number(m_metadata.fps));
    }
    return QString();
}

KelPlaybackTrackManager *LoadedRecording::manager() const
{
    return m_recorder.playbackManager();
}

qint64 LoadedRecording::durationMs() const
{
    return m_metadata.complete || !manager() ? m_metadata.durationMs : manager()->durationMs();
}

int LoadedRecording::logicFrames() const
{
    return m_error.isEmpty() ? manager()->totalFrames() : 0;
}

int LoadedRecording::videoFrames() const
{
    return m_error.isEmpty() ? manager()->videoFrameCount() : 0;
}

QSize LoadedRecording::pixels() const
{
    return m_error.isEmpty() ? recordedPixels(*manager()) : QSize();
}

QStringList LoadedRecording::tracksPresent() const
{
    QStringList present;
    for (const QLatin1String track : KelRecordingFiles::kTrackDirs) {
        const QDir files(KelRecordingFiles::path(m_directory, track));
        if (files.exists() && !files.isEmpty(QDir::Files))
            present.append(QString(track).toLower());
    }
    return present;
}

qint64 LoadedRecording::bytes() const
{
    return directorySize(m_directory);
}
