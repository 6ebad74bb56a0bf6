#include "recording/KelRecordingDirectory.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

namespace
{
// What a recording consists of; metadata last, because it is what makes a directory a recording.
const char *const Entries[] = {"Screen", "Mouse", "Keyboard", "Voice", "TrackManager.meta"};

// Enough to show that the disk is not full.
constexpr int ProbeBytes = 4096;
} // namespace

KelRecordingDirectory::KelRecordingDirectory(const QString &path)
    : m_path(path)
{
}

bool KelRecordingDirectory::prepare()
{
    if (m_path.isEmpty()) {
        m_error = QStringLiteral("No output directory given");
        return false;
    }
    m_isNew = !QFileInfo::exists(m_path);
    if (!QDir().mkpath(m_path)) {
        m_error = QStringLiteral("Cannot create the directory %1").arg(m_path);
        return false;
    }
    return isWritable() && (!holdsRecording() || setAsideRecording());
}

void KelRecordingDirectory::discard()
{
    const QString screenDir = m_path + QStringLiteral("/Screen");
    QFile::remove(screenDir + QStringLiteral("/screen_record.mp4"));
    QFile::remove(screenDir + QStringLiteral("/frame_indexes.dat"));
    for (const char *entry : Entries)
        QDir(m_path).rmdir(QLatin1String(entry)); // when it is empty now
    if (m_isNew)
        QDir().rmdir(m_path);
}

bool KelRecordingDirectory::isWritable()
{
    QTemporaryFile probe(m_path + QStringLiteral("/.kelmovie-XXXXXX"));
    if (probe.open() && probe.write(QByteArray(ProbeBytes, '\0')) == ProbeBytes && probe.flush())
        return true;
    m_error = QStringLiteral("Cannot write to the directory %1: %2").arg(m_path, probe.errorString());
    return false;
}

bool KelRecordingDirectory::holdsRecording() const
{
    return QFileInfo::exists(m_path + QStringLiteral("/TrackManager.meta")) ||
           QFileInfo(m_path + QStringLiteral("/Screen/screen_record.mp4")).size() > 0;
}

bool KelRecordingDirectory::setAsideRecording()
{
    QDir dir(m_path);
    int number = 1;
    while (!dir.mkdir(QStringLiteral("Previous-%1").arg(number)) && number < 10000)
        ++number;
    const QString aside = QStringLiteral("Previous-%1/").arg(number);
    for (const char *entry : Entries) {
        const QString name = QLatin1String(entry);
        if (dir.exists(name) && !dir.rename(name, aside + name)) {
            m_error = QStringLiteral("Cannot move the earlier recording in %1 to %2").arg(m_path, aside);
            dir.rmdir(aside);
            return false;
        }
    }
    return true;
}
