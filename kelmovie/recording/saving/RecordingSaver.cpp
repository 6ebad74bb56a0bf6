#include "recording/saving/RecordingSaver.h"

#include "files/SyncToDisk.h"
#include "recording/FileWriting.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/saving/ChangedFiles.h"

#include <QFile>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace kel
{

class RecordingSaver::Private
{
public:
    explicit Private(const QString &recordingDir)
        : m_metadataPath(KelRecordingMetadata::filePath(recordingDir))
        , m_files(recordingDir)
    {
    }

    /// The function of the thread.
    void run();

    /// Returns whether this is the first request, for which there is no thread yet.
    bool request(const QByteArray &metadata);
    bool wait(std::chrono::milliseconds limit);
    bool settleMetadata();
    Failures failures();
    void end();

private:
    QString putInPlace(const QByteArray &metadata, quint64 request);

    const QString m_metadataPath;
    ChangedFiles m_files; // of the thread

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    quint64 m_requested = 0;
    quint64 m_done = 0;
    QByteArray m_metadata;           // to be put in place next; empty: none
    quint64 m_metadataRequested = 0; // the last request that had metadata
    quint64 m_metadataInPlace = 0;   // the last one whose metadata, or newer one, is in place
    quint64 m_metadataSettled = 0;   // metadata of requests up to here is not put in place any more
    bool m_isEnding = false;
    Failures m_failures;
};

void RecordingSaver::Private::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_isEnding || m_done < m_requested; });
        if (m_done == m_requested)
            return;
        const quint64 request = m_requested;
        const QByteArray metadata = std::exchange(m_metadata, {});
        lock.unlock();
        const QString metadataFailure = metadata.isEmpty() ? QString() : putInPlace(metadata, request);
        const QString syncFailure = m_files.sync();
        lock.lock();
        m_done = request;
        if (!metadata.isEmpty())
            m_failures.metadata = metadataFailure;
        m_failures.sync = syncFailure;
        m_changed.notify_all();
    }
}

/// A power failure must not leave the new name with missing content, so the content is on the disk first.
QString RecordingSaver::Private::putInPlace(const QByteArray &metadata, quint64 request)
{
    const QString written = m_metadataPath + QStringLiteral(".new");
    QString problem = createFile(written, metadata);
    if (problem.isEmpty())
        problem = syncFile(written);
    std::lock_guard lock(m_mutex);
    if (problem.isEmpty() && request > m_metadataSettled) {
        problem = moveIntoPlace(written, m_metadataPath);
        if (problem.isEmpty())
            m_metadataInPlace = request;
    } else {
        QFile::remove(written);
    }
    return problem;
}

bool RecordingSaver::Private::request(const QByteArray &metadata)
{
    std::lock_guard lock(m_mutex);
    ++m_requested;
    if (!metadata.isEmpty()) {
        m_metadata = metadata;
        m_metadataRequested = m_requested;
    }
    m_changed.notify_all();
    return m_requested == 1;
}

bool RecordingSaver::Private::wait(std::chrono::milliseconds limit)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, limit, [this] { return m_done == m_requested; });
}

bool RecordingSaver::Private::settleMetadata()
{
    std::lock_guard lock(m_mutex);
    m_metadataSettled = m_requested;
    m_metadata.clear();
    return m_metadataInPlace >= m_metadataRequested;
}

RecordingSaver::Failures RecordingSaver::Private::failures()
{
    std::lock_guard lock(m_mutex);
    return m_failures;
}

void RecordingSaver::Private::end()
{
    std::lock_guard lock(m_mutex);
    m_isEnding = true;
    m_changed.notify_all();
}

RecordingSaver::RecordingSaver(const QString &recordingDir)
    : d(std::make_shared<Private>(recordingDir))
{
}

RecordingSaver::~RecordingSaver()
{
    d->end();
}

void RecordingSaver::save(const QByteArray &metadata)
{
    if (d->request(metadata))
        std::thread([shared = d] { shared->run(); }).detach();
}

bool RecordingSaver::wait(std::chrono::milliseconds limit)
{
    return d->wait(limit);
}

bool RecordingSaver::settleMetadata()
{
    return d->settleMetadata();
}

RecordingSaver::Failures RecordingSaver::failures() const
{
    return d->failures();
}

} // namespace kel
