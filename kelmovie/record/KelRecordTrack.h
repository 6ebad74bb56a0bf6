#pragma once

#include <QMap>
#include <QObject>
#include <QRect>
#include <QString>

#include <functional>
#include <mutex>

/// One kind of recorded data, in a directory of its own, tied to the other tracks by the logic frame.
///
/// A frame-driven track is created on the GUI thread without a parent and then lives on the thread of its
/// KelRecordTrackThreadWrap, which owns it and calls the operations below there, one at a time.
class KelRecordTrack : public QObject
{
    Q_OBJECT

public:
    KelRecordTrack(const QRect &recordArea, const QString &trackDir, QObject *parent = nullptr);
    ~KelRecordTrack() override;

    /// Records logic frame `frameIndex`. Indexes grow, with gaps where the track was busy.
    virtual void recordFrame(int frameIndex);

    /// Begins, or goes on after a pause.
    virtual void startRecording();

    virtual void pauseRecording();

    /// Finishes, flushes and closes every file of the track. `frameCount` logic frames were ticked in `durationMs`.
    virtual void stopRecording(qint64 frameCount, qint64 durationMs) = 0;

    /// Puts on disk what the first `frameCount` logic frames brought, so that it outlives the process. Asked for about
    /// once a second while recording, and when a pause begins.
    virtual void checkpoint(qint64 frameCount);

    const QRect &recordArea() const { return m_recordArea; }
    const QString &trackDir() const { return m_trackDir; }

    /// Who is told, in English, when the track cannot do its work: once each track, on the thread on which that is
    /// found out. Failures from before this call are told at once. Set before the track moves to its thread.
    using FailureHandler = std::function<void(const QString &track, const QString &problem)>;
    void setFailureHandler(const FailureHandler &handler);

    /// Keeps and tells the first failure of each `track`, which is this one's objectName(), for people ("Screen
    /// track"), unless it consists of several. The track goes on as well as it can. Any thread.
    void reportFailure(const QString &track, const QString &problem);

private:
    const QRect m_recordArea;
    const QString m_trackDir;

    std::mutex m_failureMutex;
    QMap<QString, QString> m_failures; // track -> problem
    FailureHandler m_failureHandler;
};
