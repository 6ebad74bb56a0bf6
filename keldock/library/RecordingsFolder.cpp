#include "library/RecordingsFolder.h"

#include <KelMovie/KelRecordingMetadata.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace
{

// A recording under way is written to about once a second.
constexpr int kQuietSeconds = 10;

QString videoPath(const QString &dir)
{
    return dir + QStringLiteral("/Screen/screen_record.mp4");
}

} // namespace

RecordingsFolder::RecordingsFolder(const QString &root)
    : m_root(QDir(root.isEmpty() ? defaultRoot() : root).absolutePath())
{
}

QString RecordingsFolder::defaultRoot()
{
    return QStandardPaths::writableLocation(QStandardPaths::MoviesLocation) + QStringLiteral("/KelMovie");
}

QString RecordingsFolder::newRecordingDir() const
{
    const QString name =
        m_root + QLatin1Char('/') + QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH-mm-ss"));
    QString dir = name;
    for (int number = 2; QFileInfo::exists(dir); ++number)
        dir = QStringLiteral("%1 (%2)").arg(name, QString::number(number));
    return dir;
}

QVector<RecordingsFolder::Entry> RecordingsFolder::recordings() const
{
    QVector<Entry> entries;
    QDirIterator dirs(m_root, QDir::Dirs | QDir::NoDotAndDotDot);
    while (dirs.hasNext()) {
        const QString dir = dirs.next();
        if (holdsRecording(dir))
            entries.append({dir, lastWritten(dir)});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry &a, const Entry &b) { return a.saved != b.saved ? a.saved > b.saved : a.dir > b.dir; });
    return entries;
}

QStringList RecordingsFolder::leftovers(const QString &except) const
{
    QStringList dirs;
    const QVector<Entry> entries = recordings();
    for (const Entry &entry : entries) {
        if (QDir(entry.dir) != QDir(except) && state(entry.dir) == State::Interrupted)
            dirs.append(entry.dir);
    }
    return dirs;
}

bool RecordingsFolder::holdsRecording(const QString &dir)
{
    return QFileInfo::exists(KelRecordingMetadata::filePath(dir)) || QFileInfo(videoPath(dir)).size() > 0;
}

QDateTime RecordingsFolder::lastWritten(const QString &dir)
{
    QDateTime latest;
    for (const QString &path : {KelRecordingMetadata::filePath(dir), videoPath(dir)}) {
        const QFileInfo file(path);
        if (file.exists())
            latest = latest.isValid() ? std::max(latest, file.lastModified()) : file.lastModified();
    }
    return latest;
}

RecordingsFolder::State RecordingsFolder::state(const QString &dir)
{
    // Without metadata it died before its first second was over.
    const bool hasMetadata = QFileInfo::exists(KelRecordingMetadata::filePath(dir));
    KelRecordingMetadata metadata;
    if (hasMetadata && (!KelRecordingMetadata::load(dir, &metadata) || metadata.complete))
        return State::Complete;
    const bool isQuiet = lastWritten(dir).secsTo(QDateTime::currentDateTime()) > kQuietSeconds;
    return isQuiet ? State::Interrupted : State::UnderWay;
}

bool RecordingsFolder::moveToTrash(const QString &dir)
{
    QString place;
    if (!QFile::moveToTrash(dir, &place))
        return false;
    // Where there is no trash, Qt 5 takes the working directory for one, in which nobody would ever look.
    QDir trash(QFileInfo(place).path() + QStringLiteral("/.."));
    if (place.isEmpty() || trash.canonicalPath() != QDir::current().canonicalPath())
        return true;
    QDir().rename(place, dir);
    QFile::remove(trash.filePath(QStringLiteral("info/%1.trashinfo").arg(QFileInfo(place).fileName())));
    trash.rmdir(QStringLiteral("files"));
    trash.rmdir(QStringLiteral("info"));
    return false;
}

bool RecordingsFolder::remove(const QString &dir, QString *error)
{
    if (QDir(dir).removeRecursively())
        return true;
    *error = tr("Some of its files cannot be deleted.");
    return false;
}

bool RecordingsFolder::rename(const QString &dir, const QString &name, QString *newDir, QString *error)
{
    const QString trimmed = name.trimmed();
    *newDir = QFileInfo(dir).path() + QLatin1Char('/') + trimmed;
    if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('.')) || trimmed.contains(QLatin1Char('/')) ||
        trimmed.contains(QLatin1Char('\\')))
        *error = tr("A name is not empty, does not begin with a dot and "
                    "contains no slash.");
    else if (QFileInfo::exists(*newDir))
        *error = tr("There is something of that name already.");
    else if (!QDir().rename(dir, *newDir))
        *error = tr("The folder cannot be renamed.");
    else
        return true;
    return false;
}
