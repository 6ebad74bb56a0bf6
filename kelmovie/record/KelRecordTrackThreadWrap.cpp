#include "record/KelRecordTrackThreadWrap.h"

#include "logging/Log.h"
#include "record/KelRecordScreenTrack.h"
#include "record/KelRecordTrackWorker.h"

#include <QDebug>

using std::chrono::milliseconds;

namespace
{
constexpr milliseconds kStartWait{3000};
constexpr milliseconds kPauseWait{100};
constexpr milliseconds kStopWait{1000};
constexpr milliseconds kDestructorWait{3000};
} // namespace

KelRecordTrackThreadWrap::KelRecordTrackThreadWrap(KelRecordTrack *track, QObject *parent)
    : QThread(parent)
    , m_track(track)
    , m_worker(new KelRecordTrackWorker(track))
{
    if (m_track)
        m_track->moveToThread(this);
    m_worker->moveToThread(this);

    start(QThread::InheritPriority);
    if (!isRunning() && m_track)
        m_track->reportFailure(m_track->objectName(), QStringLiteral("its thread could not be started"));

    connect(this, &KelRecordTrackThreadWrap::doFrameTriggered, m_worker, &KelRecordTrackWorker::onFrameTriggered,
            Qt::QueuedConnection);
    connect(this, &KelRecordTrackThreadWrap::doStartRecording, m_worker, &KelRecordTrackWorker::onStartRecording,
            Qt::QueuedConnection);
    connect(this, &KelRecordTrackThreadWrap::doPauseRecording, m_worker, &KelRecordTrackWorker::onPauseRecording,
            Qt::QueuedConnection);
    connect(this, &KelRecordTrackThreadWrap::doStopRecording, m_worker, &KelRecordTrackWorker::onStopRecording,
            Qt::QueuedConnection);
    connect(this, &KelRecordTrackThreadWrap::doCheckpoint, m_worker, &KelRecordTrackWorker::onCheckpoint,
            Qt::QueuedConnection);

    // While the GUI thread waits for a completion it cannot receive a queued one, so the worker's thread counts
    // finished requests and wakes the waiter. Connected first, so that the count is up to date when the queued
    // completion arrives.
    connect(
        m_worker, &KelRecordTrackWorker::frameCompleted, this, [this] { requestFinished(); }, Qt::DirectConnection);
    connect(
        m_worker, &KelRecordTrackWorker::operationCompleted, this, [this] { requestFinished(); }, Qt::DirectConnection);
    connect(m_worker, &KelRecordTrackWorker::frameCompleted, this, &KelRecordTrackThreadWrap::onFrameCompleted,
            Qt::QueuedConnection);
    connect(m_worker, &KelRecordTrackWorker::operationCompleted, this, &KelRecordTrackThreadWrap::onOperationCompleted,
            Qt::QueuedConnection);
}

KelRecordTrackThreadWrap::~KelRecordTrackThreadWrap()
{
    {
        std::unique_lock lock(m_mutex);
        if (!waitForIdle(lock, kDestructorWait))
            qCWarning(kel::logRecord) << "[Thread Warning] KelRecordTrackThreadWrap destructor timeout, forcing quit";
    }
    // Queued behind the requests. A direct quit() would drop those that still wait, the stop among them.
    QMetaObject::invokeMethod(
        m_worker, [this] { quit(); }, Qt::QueuedConnection);
    if (!wait(kDestructorWait.count())) {
        qCWarning(kel::logRecord) << "KelRecordTrackThreadWrap thread did not quit gracefully, terminating";
        terminate();
        wait();
    }
    delete m_worker;
    delete m_track;
}

bool KelRecordTrackThreadWrap::triggerFrame(int frameIndex)
{
    std::lock_guard lock(m_mutex);
    if (m_busy)
        return false;
    m_busy = true;
    ++m_posted;
    emit doFrameTriggered(frameIndex);
    return true;
}

void KelRecordTrackThreadWrap::startRecording()
{
    std::unique_lock lock(m_mutex);
    if (!waitForIdle(lock, kStartWait))
        qCWarning(kel::logRecord) << "[Thread Warning] KelRecordTrackThreadWrap::startRecording timeout, forcing start";
    m_busy = true;
    ++m_posted;
    emit doStartRecording();
}

void KelRecordTrackThreadWrap::pauseRecording()
{
    std::unique_lock lock(m_mutex);
    if (!waitForIdle(lock, kPauseWait))
        qCWarning(kel::logRecord) << "[Thread Warning] KelRecordTrackThreadWrap::pauseRecording timeout, forcing pause";
    m_busy = true;
    ++m_posted;
    emit doPauseRecording();
}

void KelRecordTrackThreadWrap::stopRecording(qint64 frameCount, qint64 duration)
{
    qCWarning(kel::logRecord) << "[KelRecordTrackThreadWrap::stopRecording] ========== 开始 ==========";
    std::unique_lock lock(m_mutex);
    qCWarning(kel::logRecord) << "[KelRecordTrackThreadWrap] 等待线程空闲 (超时" << kStopWait.count() << "ms)";
    while (!isIdle()) {
        if (!waitForProgress(lock, kStopWait)) {
            qCWarning(kel::logRecord) << "[KelRecordTrackThreadWrap] 等待超时，强制停止";
            break;
        }
        qCWarning(kel::logRecord) << "[KelRecordTrackThreadWrap] 线程已空闲";
    }
    m_busy = true;
    ++m_posted;
    qCWarning(kel::logRecord) << "[KelRecordTrackThreadWrap] 发送 doStopRecording 信号";
    emit doStopRecording(frameCount, duration);
    qCWarning(kel::logRecord) << "[KelRecordTrackThreadWrap::stopRecording] ========== 完成 (异步) ==========";
}

void KelRecordTrackThreadWrap::checkpoint(qint64 frameCount)
{
    std::lock_guard lock(m_mutex);
    if (m_posted - m_finished > 2) // a frame and a pause may be pending; further checkpoints must not pile up
        return;
    ++m_posted;
    emit doCheckpoint(frameCount);
}

bool KelRecordTrackThreadWrap::drain(milliseconds limit)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, limit, [this] { return m_finished == m_posted; });
}

int KelRecordTrackThreadWrap::trackFrameCount() const
{
    const auto *screenTrack = qobject_cast<KelRecordScreenTrack *>(m_track);
    return screenTrack ? screenTrack->frameCount() : 0;
}

void KelRecordTrackThreadWrap::run()
{
    exec();
}

void KelRecordTrackThreadWrap::onFrameCompleted()
{
    clearBusy();
}

void KelRecordTrackThreadWrap::onOperationCompleted()
{
    clearBusy();
}

bool KelRecordTrackThreadWrap::isIdle() const
{
    return !m_busy || m_finished == m_posted;
}

/// Waits until one more request has finished; false when `limit` is reached first.
bool KelRecordTrackThreadWrap::waitForProgress(std::unique_lock<std::mutex> &lock, milliseconds limit)
{
    const quint64 before = m_finished;
    return m_changed.wait_for(lock, limit, [&] { return m_finished != before; });
}

/// Waits for all requests in flight; false as soon as one takes longer than `limit`.
bool KelRecordTrackThreadWrap::waitForIdle(std::unique_lock<std::mutex> &lock, milliseconds limit)
{
    while (!isIdle()) {
        if (!waitForProgress(lock, limit))
            return false;
    }
    return true;
}

void KelRecordTrackThreadWrap::requestFinished()
{
    std::lock_guard lock(m_mutex);
    ++m_finished;
    m_changed.notify_all();
}

void KelRecordTrackThreadWrap::clearBusy()
{
    std::lock_guard lock(m_mutex);
    // A completion delivered late may belong to an earlier request than the current one.
    if (m_finished == m_posted)
        m_busy = false;
}
