#include "play/DirectoryWatch.h"

#include <QFileInfo>

DirectoryWatch::DirectoryWatch(const QString &dir, QObject *parent)
    : QObject(parent)
    , m_dir(QFileInfo(dir).absoluteFilePath())
    , m_exists(QFileInfo(dir).isDir())
{
    watch();
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &DirectoryWatch::look);
}

/// The directory itself tells of its end, the one above it of its being moved.
void DirectoryWatch::watch()
{
    for (const QString &path : {m_dir, QFileInfo(m_dir).path()}) {
        if (QFileInfo::exists(path))
            m_watcher.addPath(path);
    }
}

void DirectoryWatch::look()
{
    const bool exists = QFileInfo(m_dir).isDir();
    if (exists == m_exists)
        return;
    m_exists = exists;
    watch();
    emit existsChanged(exists);
}
