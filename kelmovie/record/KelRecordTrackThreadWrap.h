#pragma once

#include <QThread>

#include <chrono>
#include <condition_variable>
#include <mutex>

class KelRecordTrack;
class KelRecordTrackWorker;

/// The thread of one frame-driven track. Owned and called by the GUI thread; requests go to the worker as queued
/// signals and are handled there in order.
///
/// At most one frame is in flight: a tick is refused while the track is busy, so the clock never waits for a slow
/// track. Other requests wait, up to a limit, for the track to become idle, and are then queued even if it is not.
class KelRecordTrackThreadWrap : public QThread
{
    Q_OBJECT

public:
    /// Takes ownership of `track`, which must have no parent.
    explicit KelRecordTrackThreadWrap(KelRecordTrack *track, QObject *parent = nullptr);

    /// Waits, up to a limit, until the track has handled all requests; then ends the thread and deletes the track.
    ~KelRecordTrackThreadWrap() override;

    KelRecordTrack *track() const { return m_track; }

    /// Asks the track to record a frame. While the track is busy, returns false and does nothing. Never waits.
    bool triggerFrame(int frameIndex);

    void startRecording();
    void pauseRecording();

    /// Returns when the stop is queued. Call drain() to wait until the track has handled it.
    void stopRecording(qint64 frameCount, qint64 duration);

    /// Queues writing to disk what the track has recorded so far. Skipped when the track lags. Never waits.
    void checkpoint(qint64 frameCount);

    /// Waits until the track has handled all requests. False when `limit` is reached first.
    bool drain(std::chrono::milliseconds limit);

    /// Frames encoded by a screen track; 0 for other tracks.
    int trackFrameCount() const;

signals:
    void doFrameTriggered(int frameIndex);
    void doStartRecording();
    void doPauseRecording();
    void doStopRecording(qint64 frameCount, qint64 duration);
    void doCheckpoint(qint64 frameCount);

protected:
    void run() override;

private slots:
    void onFrameCompleted();
    void onOperationCompleted();

private:
    bool isIdle() const;
    bool waitForProgress(std::unique_lock<std::mutex> &lock, std::chrono::milliseconds limit);
    bool waitForIdle(std::unique_lock<std::mutex> &lock, std::chrono::milliseconds limit);
    void requestFinished();
    void clearBusy();

    KelRecordTrack *const m_track;
    KelRecordTrackWorker *const m_worker;

    std::mutex m_mutex; // guards what follows; held while a request is posted
    std::condition_variable m_changed;
    bool m_busy = false;    // cleared on the GUI thread by the queued completion
    quint64 m_posted = 0;   // requests sent to the worker
    quint64 m_finished = 0; // requests handled, counted on the worker's thread
};
