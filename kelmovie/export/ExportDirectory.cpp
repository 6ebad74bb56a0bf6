#include "export/ExportDirectory.h"

#include <QDir>
#include <QFileInfo>

namespace kel
{

namespace
{

const QString kPrefix = QStringLiteral(".kel_export_");

QString lockPath(const QString &directory)
{
    return directory + QStringLiteral("/lock");
}

} // namespace

ExportDirectory::ExportDirectory(const QString &folder)
    : m_directory(folder + QLatin1Char('/') + kPrefix + QStringLiteral("XXXXXX"))
{
    if (!m_directory.isValid())
        return;
    // Without a lock, for example on a file system that has none, other exports leave this directory alone.
    m_lock.acquire(lockPath(m_directory.path()));
    removeAbandoned();
}

bool ExportDirectory::remove()
{
    m_lock.release();
    return m_directory.remove();
}

void ExportDirectory::removeAbandoned() const
{
    const QFileInfo own(m_directory.path());
    const auto directories =
        QDir(own.path()).entryInfoList({kPrefix + QLatin1Char('*')}, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
    for (const QFileInfo &directory : directories) {
        const bool isOurs = directory.ownerId() == own.ownerId();
        if (isOurs && FileLock::stateOf(lockPath(directory.filePath())) == FileLock::State::Abandoned)
            QDir(directory.filePath()).removeRecursively();
    }
}

} // namespace kel
