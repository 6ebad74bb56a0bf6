#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <memory>

namespace kel
{

/// Brings a running recording to the disk itself, so that it survives a power failure: puts its metadata in place and
/// has the system write out all that the tracks have written. Works on a thread of its own, because a disk may take
/// seconds; requests that come meanwhile are merged into one. One thread at a time.
class RecordingSaver
{
public:
    explicit RecordingSaver(const QString &recordingDir);

    /// Does not wait: the thread ends when it has done what was requested.
    ~RecordingSaver();

    /// Requests that the metadata, unless `metadata` is empty, and then all files that have changed are saved. Never
    /// waits.
    void save(const QByteArray &metadata = {});

    /// Waits until everything requested is done. False when `limit` is reached first.
    bool wait(std::chrono::milliseconds limit);

    /// Whether the metadata requested last is in place. If it is not, it never will be, so that the caller can write
    /// the file without being overtaken.
    bool settleMetadata();

    struct Failures {
        QString metadata; ///< why the metadata could not be written
        QString sync;     ///< which file could not be brought to the disk, and why
    };

    /// What fails at present, in English: null strings once it succeeds again.
    Failures failures() const;

private:
    class Private;

    const std::shared_ptr<Private> d; // shared with the thread, which may outlive this object
};

} // namespace kel
