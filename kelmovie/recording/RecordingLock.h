#pragma once

#include "files/FileLock.h"

#include <QString>

namespace kel
{

/// Marks the directory of a recording as in use by the process that records into it. While it is held, others must not
/// repair, join, move or rename anything there. It ends with the process, so what a dead process left behind is known
/// at once. Its file, "recording.lock", is removed when it is released. Not thread-safe.
class RecordingLock
{
public:
    /// Locks `dir`, which has to exist. False when it cannot be locked; errorString() says why. Succeeds without
    /// a lock on a file system that has none.
    bool acquire(const QString &dir);

    void release() { m_lock.release(); }

    QString errorString() const { return m_error; }

    /// Held and Abandoned are certain; None means that the age of the files has to decide. Any thread.
    static FileLock::State stateOf(const QString &dir);

    /// Whether a running process records into `dir`. Any thread.
    static bool isHeld(const QString &dir) { return stateOf(dir) == FileLock::State::Held; }

private:
    FileLock m_lock;
    QString m_error;
};

} // namespace kel
