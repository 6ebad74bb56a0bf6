#include "recording/saving/ChangedFiles.h"

#include "files/SyncToDisk.h"
#include "recording/KelRecordingFiles.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFileInfo>

namespace kel
{

namespace
{
/// A file may change twice within one step of its time stamp, which is two seconds on some file systems.
constexpr qint64 kTimeStampStepMs = 2000;
} // namespace

QString ChangedFiles::sync()
{
    QString failure;
    for (const QLatin1String trackDir : KelRecordingFiles::kTrackDirs) {
        const QString path = KelRecordingFiles::path(m_dir, trackDir);
        QDirIterator entries(path, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            entries.next();
            syncIfChanged(entries.fileInfo(), &failure);
        }
        syncIfChanged(QFileInfo(path), &failure);
    }
    const QFileInfo recording(m_dir);
    syncIfChanged(recording, &failure);
    syncIfChanged(QFileInfo(recording.absolutePath()), &failure); // has the name of a new recording
    return failure;
}

void ChangedFiles::syncIfChanged(const QFileInfo &entry, QString *failure)
{
    if (!entry.exists())
        return;
    const QString path = entry.filePath();
    const Version version{entry.lastModified().toMSecsSinceEpoch(), entry.size()};
    const auto saved = m_saved.constFind(path);
    if (saved != m_saved.cend() && saved->modifiedMs == version.modifiedMs && saved->size == version.size)
        return;
    const qint64 nowMs = QDateTime::currentMSecsSinceEpoch();
    const QString problem = entry.isDir() ? syncDirectory(path) : syncFile(path);
    if (!problem.isEmpty()) {
        if (failure->isEmpty() && QFileInfo::exists(path)) // temporary files come and go
            *failure = QStringLiteral("%1: %2").arg(path, problem);
    } else if (nowMs - version.modifiedMs > kTimeStampStepMs) {
        m_saved.insert(path, version);
    }
}

} // namespace kel
