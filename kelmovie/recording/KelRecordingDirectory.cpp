#include "recording/KelRecordingDirectory.h"

#include "files/PrivateFile.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingState.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

using namespace kel;

namespace
{
// Metadata last, because a directory with metadata counts as a recording.
constexpr QLatin1String kEntries[] = {KelRecordingFiles::kScreenDir, KelRecordingFiles::kMouseDir,
                                      KelRecordingFiles::kKeyboardDir, KelRecordingFiles::kVoiceDir,
                                      KelRecordingFiles::kMetadata};

constexpr int kProbeBytes = 4096; // enough to notice a full disk
constexpr int kMaxPrevious = 10'000;
} // namespace

KelRecordingDirectory::KelRecordingDirectory(const QString &path)
    : m_path(path.isEmpty() ? path : QDir::cleanPath(path))
{
}

QString KelRecordingDirectory::path() const
{
    // The directory itself may be a link, because the caller chose it. What it contains may not.
    const QFileInfo info(m_path);
    return info.isSymLink() && info.exists() ? info.canonicalFilePath() : m_path;
}

bool KelRecordingDirectory::prepare()
{
    if (m_path.isEmpty()) {
        m_error = QStringLiteral("No output directory given");
        return false;
    }
    return create() && isWritable() && lock() && (!KelRecordingState::holdsRecording(m_path) || setAsideRecording());
}

void KelRecordingDirectory::discard()
{
    // The start may have failed because somebody has put a link there.
    if (!QFileInfo(KelRecordingFiles::path(m_path, KelRecordingFiles::kScreenDir)).isSymLink()) {
        QFile::remove(KelRecordingFiles::videoPath(m_path));
        QFile::remove(KelRecordingFiles::frameIndexPath(m_path));
        QFile::remove(KelRecordingFiles::frameTimesPath(m_path));
    }
    for (const QLatin1String entry : kEntries)
        QDir(m_path).rmdir(entry); // removes empty directories only
    release();
    if (m_isNew)
        QDir().rmdir(m_path);
}

bool KelRecordingDirectory::create()
{
    m_isNew = !QFileInfo::exists(m_path);
    const QString problem = makePrivateDirectory(path());
    if (!problem.isEmpty())
        m_error = QStringLiteral("Cannot create the directory %1: %2").arg(m_path, problem);
    return problem.isEmpty();
}

bool KelRecordingDirectory::isWritable()
{
    QTemporaryFile probe(m_path + QStringLiteral("/.kelmovie-XXXXXX"));
    if (probe.open() && probe.write(QByteArray(kProbeBytes, '\0')) == kProbeBytes && probe.flush())
        return true;
    m_error = QStringLiteral("Cannot write to the directory %1: %2").arg(m_path, probe.errorString());
    return false;
}

bool KelRecordingDirectory::lock()
{
    if (m_lock.acquire(m_path))
        return true;
    m_error = m_lock.errorString();
    return false;
}

bool KelRecordingDirectory::setAsideRecording()
{
    QDir dir(m_path);
    const auto isTaken = [&](const QString &name) {
        const QFileInfo info(dir, name);
        return info.exists() || info.isSymLink();
    };
    int number = 1;
    while (isTaken(KelRecordingFiles::previousDir(number)) && number < kMaxPrevious)
        ++number;
    const QString aside = KelRecordingFiles::previousDir(number) + QLatin1Char('/');
    makePrivateDirectory(dir.filePath(KelRecordingFiles::previousDir(number)));
    for (const QLatin1String entry : kEntries) {
        if (dir.exists(entry) && !dir.rename(entry, aside + entry)) {
            m_error = QStringLiteral("Cannot move the earlier recording in %1 to %2").arg(m_path, aside);
            dir.rmdir(aside);
            return false;
        }
    }
    return true;
}
