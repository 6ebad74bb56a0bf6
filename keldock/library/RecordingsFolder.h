#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

/// The folder that contains the recordings, one directory each. Stateless: every call examines the disk. Any thread.
class RecordingsFolder
{
    Q_DECLARE_TR_FUNCTIONS(RecordingsFolder)

public:
    struct Entry {
        QString dir;     ///< absolute path
        QDateTime saved; ///< when the recording was last written to
    };

    /// An empty `root` stands for defaultRoot(). Does not create the folder.
    explicit RecordingsFolder(const QString &root = QString());

    /// "KelMovie" in the user's videos folder.
    static QString defaultRoot();

    QString root() const { return m_root; }

    /// A path for a new recording that does not exist yet, named after the current date and time. The recorder creates
    /// the directory.
    QString newRecordingDir() const;

    /// All recordings, newest first.
    QVector<Entry> recordings() const;

    /// The directories of interrupted recordings, except for `except`, a recording in progress.
    QStringList interrupted(const QString &except = QString()) const;

    /// Moves a recording to the desktop's trash. False if that fails.
    static bool moveToTrash(const QString &dir);
    /// Deletes a recording permanently. On failure `error` has the reason, and some files are left.
    static bool remove(const QString &dir, QString *error);
    /// Renames a recording; `newDir` is its new directory. On failure `error` has the reason.
    static bool rename(const QString &dir, const QString &name, QString *newDir, QString *error);

private:
    QString m_root;
};
