#include "recording/RecordingLock.h"

#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>

namespace kel
{

namespace
{
QString lockPath(const QString &dir)
{
    return KelRecordingFiles::path(dir, KelRecordingFiles::kLock);
}
} // namespace

bool RecordingLock::acquire(const QString &dir)
{
    switch (m_lock.acquire(lockPath(dir))) {
    case FileLock::Result::Acquired:
        return true;
    case FileLock::Result::NotSupported:
        qCWarning(logRecording) << "[RecordingLock] the file system of" << dir << "has no locks";
        return true;
    case FileLock::Result::HeldElsewhere:
        m_error = QStringLiteral("Another recording is running in the directory %1").arg(dir);
        return false;
    case FileLock::Result::Failed:
        break;
    }
    m_error = QStringLiteral("Cannot lock %1: %2").arg(lockPath(dir), m_lock.errorString());
    return false;
}

FileLock::State RecordingLock::stateOf(const QString &dir)
{
    return FileLock::stateOf(lockPath(dir));
}

} // namespace kel
