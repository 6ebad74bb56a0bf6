#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

/// Notices when a directory is deleted, moved or renamed, and when it is back. GUI thread.
class DirectoryWatch : public QObject
{
    Q_OBJECT

public:
    explicit DirectoryWatch(const QString &dir, QObject *parent = nullptr);

    bool exists() const { return m_exists; }

signals:
    void existsChanged(bool exists);

private:
    void watch();
    void check();

    const QString m_dir;
    QFileSystemWatcher m_watcher;
    bool m_exists;
};
