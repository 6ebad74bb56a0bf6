#pragma once

#include <QString>

#include <memory>

namespace kel
{

/// Holds a file as a sign that this process is at work, which the operating system takes back when the process dies,
/// however it dies. Not thread-safe.
class FileLock
{
public:
    enum class Result {
        Acquired,
        HeldElsewhere, ///< by another process, or by another FileLock of this one
        NotSupported,  ///< the file system has no locks; no file is left
        Failed         ///< errorString() says why
    };

    FileLock();
    ~FileLock(); ///< release()
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

    /// Creates the file unless it exists, and locks it. Refuses anything but an ordinary file, links included.
    Result acquire(const QString &path);

    /// Deletes the file and gives up the lock. Does nothing without one.
    void release();

    /// In English, after acquire() returned Failed.
    QString errorString() const { return m_error; }

    enum class State {
        None,     ///< there is no such file, or it cannot be told whether it is locked
        Held,     ///< a running process holds it
        Abandoned ///< nobody holds it: the process that did has died
    };

    /// Examines the file at `path` without locking or changing it. Any thread.
    static State stateOf(const QString &path);

private:
    class Private;

    const std::unique_ptr<Private> d; // what the operating system needs to know
    QString m_error;
};

} // namespace kel
