#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

/// Tells when a directory vanishes, by whatever way, and when it is back.
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
    void look();

    const QString m_dir;
    QFileSystemWatcher m_watcher;
    bool m_exists;
};
