#pragma once

#include <QHash>
#include <QString>

class QFileInfo;

namespace kel
{

/// Brings those files and directories of a recording to the disk that have changed since they were brought there last.
/// One thread at a time.
class ChangedFiles
{
public:
    explicit ChangedFiles(const QString &recordingDir)
        : m_dir(recordingDir)
    {
    }

    /// Tries every file. Returns the first failure, in English, or a null string.
    QString sync();

private:
    struct Version {
        qint64 modifiedMs;
        qint64 size;
    };

    void syncIfChanged(const QFileInfo &entry, QString *failure);

    const QString m_dir;
    QHash<QString, Version> m_saved; // by path
};

} // namespace kel
