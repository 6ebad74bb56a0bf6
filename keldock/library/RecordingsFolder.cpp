#include "library/RecordingsFolder.h"

#include <KelMovie/KelRecordingState.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

RecordingsFolder::RecordingsFolder(const QString &root)
    : m_root(QDir(root.isEmpty() ? defaultRoot() : root).absolutePath())
{
}

QString RecordingsFolder::defaultRoot()
{
    return QStandardPaths::writableLocation(QStandardPaths::MoviesLocation) + QLatin1String("/KelMovie");
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
        if (KelRecordingState::holdsRecording(dir))
            entries.append({dir, KelRecordingState::lastWritten(dir)});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry &a, const Entry &b) { return a.saved != b.saved ? a.saved > b.saved : a.dir > b.dir; });
    return entries;
}

QStringList RecordingsFolder::interrupted(const QString &except) const
{
    QStringList dirs;
    const QVector<Entry> entries = recordings();
    for (const Entry &entry : entries) {
        if (QDir(entry.dir) != QDir(except) &&
            KelRecordingState::stateOf(entry.dir) == KelRecordingState::State::Interrupted)
            dirs.append(entry.dir);
    }
    return dirs;
}

bool RecordingsFolder::moveToTrash(const QString &dir)
{
    // The trash is a folder in it, which Qt does not create.
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
    QString trashed;
    if (!QFile::moveToTrash(dir, &trashed))
        return false;
    // Without a trash folder, Qt 5 makes one of the working directory, where no user would look. This is undone.
    QDir trash(QFileInfo(trashed).path() + QLatin1String("/.."));
    if (trashed.isEmpty() || trash.canonicalPath() != QDir::current().canonicalPath())
        return true;
    QDir().rename(trashed, dir);
    QFile::remove(trash.filePath(QStringLiteral("info/%1.trashinfo").arg(QFileInfo(trashed).fileName())));
    trash.rmdir(QStringLiteral("files"));
    trash.rmdir(QStringLiteral("info"));
    return false;
}

bool RecordingsFolder::remove(const QString &dir, QString *error)
{
    if (QDir(dir).removeRecursively())
        return true;
    *error = tr("Some files cannot be deleted.");
    return false;
}

bool RecordingsFolder::rename(const QString &dir, const QString &name, QString *newDir, QString *error)
{
    const QString trimmed = name.trimmed();
    *newDir = QFileInfo(dir).path() + QLatin1Char('/') + trimmed;
    if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('.')) || trimmed.contains(QLatin1Char('/')) ||
        trimmed.contains(QLatin1Char('\\')))
        *error = tr("A name must not be empty, start with a dot or contain a slash.");
    else if (QFileInfo::exists(*newDir))
        *error = tr("That name is taken.");
    else if (!QDir().rename(dir, *newDir))
        *error = tr("The folder cannot be renamed.");
    else
        return true;
    return false;
}
