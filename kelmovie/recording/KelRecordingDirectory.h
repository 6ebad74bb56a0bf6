#pragma once

#include "recording/RecordingLock.h"

#include <QString>

/// The directory of a recording from before its start until its files are complete.
class KelRecordingDirectory
{
public:
    explicit KelRecordingDirectory(const QString &path);

    /// Creates the directory, for its owner only, if necessary, checks that it is writable, locks it, and moves a
    /// recording that is already in it to a subdirectory. False when that fails, as when another recording is running
    /// there; errorString() says why.
    bool prepare();

    /// Removes the files that a recording has created in the prepared directory before it failed to start.
    void discard();

    /// Gives up the lock, because the recording's files are complete. The destructor does the same.
    void release() { m_lock.release(); }

    /// Without a link at its end.
    QString path() const;

    QString errorString() const { return m_error; }

private:
    bool create();
    bool isWritable();
    bool lock();
    bool setAsideRecording();

    const QString m_path;
    kel::RecordingLock m_lock;
    bool m_isNew = false;
    QString m_error;
};
