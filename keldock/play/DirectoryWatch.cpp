#include "play/DirectoryWatch.h"

#include <QFileInfo>

DirectoryWatch::DirectoryWatch(const QString &dir, QObject *parent)
    : QObject(parent)
    , m_dir(QFileInfo(dir).absoluteFilePath())
    , m_exists(QFileInfo(dir).isDir())
{
    watch();
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &DirectoryWatch::check);
}

/// Watching the directory reports its deletion; watching its parent reports that it was moved.
void DirectoryWatch::watch()
{
    for (const QString &path : {m_dir, QFileInfo(m_dir).path()}) {
        if (QFileInfo::exists(path))
            m_watcher.addPath(path);
    }
}

void DirectoryWatch::check()
{
    const bool exists = QFileInfo(m_dir).isDir();
    if (exists == m_exists)
        return;
    m_exists = exists;
    watch();
    emit existsChanged(exists);
}
