#pragma once

#include <QMap>
#include <QObject>
#include <QRect>
#include <QString>

#include <functional>
#include <mutex>

/// Records one kind of data into its own directory, synchronized with the other tracks by logic frames.
///
/// A frame-driven track is created on the GUI thread without a parent and then lives on the thread of its
/// KelRecordTrackThreadWrap, which owns it and calls the operations below there, one at a time.
class KelRecordTrack : public QObject
{
    Q_OBJECT

public:
    KelRecordTrack(const QRect &recordArea, const QString &trackDir, QObject *parent = nullptr);
    ~KelRecordTrack() override;

    /// Records logic frame `frameIndex`. Indexes increase, with gaps where the track was busy.
    virtual void recordFrame(int frameIndex);

    /// Starts recording, or resumes after a pause.
    virtual void startRecording();

    virtual void pauseRecording();

    /// Completes and closes every file of the track. The recording has `frameCount` logic frames and lasts
    /// `durationMs`.
    virtual void stopRecording(qint64 frameCount, qint64 durationMs) = 0;

    /// Writes what was recorded in the first `frameCount` logic frames to disk, so that it survives a crash of the
    /// process. Called about twice a second while recording, and when a pause begins.
    virtual void checkpoint(qint64 frameCount);

    const QRect &recordArea() const { return m_recordArea; }
    const QString &trackDir() const { return m_trackDir; }

    /// Called with an English description when the track cannot do its work: once per track name, on the thread that
    /// detects the failure. Earlier failures are reported during setFailureHandler(), which must be called before the
    /// track moves to its thread.
    using FailureHandler = std::function<void(const QString &track, const QString &problem)>;
    void setFailureHandler(const FailureHandler &handler);

    /// Keeps and reports the first failure of each `track`: a display name, which is objectName() ("Screen track")
    /// unless this track consists of several. The track continues as far as it can. Any thread.
    void reportFailure(const QString &track, const QString &problem);

private:
    const QRect m_recordArea;
    const QString m_trackDir;

    std::mutex m_failureMutex;
    QMap<QString, QString> m_failures; // track -> problem
    FailureHandler m_failureHandler;
};
