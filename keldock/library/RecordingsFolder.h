#pragma once

#include <QCoreApplication>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <QVector>

/// The folder in which the recordings lie, a directory each. Knows what is on disk at the moment of the call and keeps
/// nothing. Any thread.
class RecordingsFolder
{
    Q_DECLARE_TR_FUNCTIONS(RecordingsFolder)

public:
    enum class State { Complete, UnderWay, Interrupted };

    struct Entry {
        QString dir;     ///< absolute path
        QDateTime saved; ///< when the recording was last written to
    };

    /// An empty `root` means defaultRoot(). Nothing is created.
    explicit RecordingsFolder(const QString &root = QString());

    /// "KelMovie" in the user's folder of videos.
    static QString defaultRoot();

    QString root() const { return m_root; }

    /// Path for a new recording, named after the present date and time; nothing of that name exists yet. The recorder
    /// creates the directory.
    QString newRecordingDir() const;

    /// The recordings, the newest first.
    QVector<Entry> recordings() const;

    /// The recordings whose process died: the interrupted ones but for `except`, which is being recorded right now.
    QStringList leftovers(const QString &except = QString()) const;

    /// Whether a directory holds a recording, whole or not.
    static bool holdsRecording(const QString &dir);
    /// When the recording was last written to; invalid when there is none.
    static QDateTime lastWritten(const QString &dir);
    /// By what is on disk: a recording that was not completed counts as interrupted when nothing has been written to it
    /// for some seconds. One that is paused does, too.
    static State state(const QString &dir);

    /// Moves a recording to the desktop's trash. False where that does not work.
    static bool moveToTrash(const QString &dir);
    /// Deletes a recording for good. On failure `error` says why, and what could not be deleted is left.
    static bool remove(const QString &dir, QString *error);
    /// Gives a recording another name; `newDir` is where it lies then. On failure `error` says why.
    static bool rename(const QString &dir, const QString &name, QString *newDir, QString *error);

private:
    QString m_root;
};
