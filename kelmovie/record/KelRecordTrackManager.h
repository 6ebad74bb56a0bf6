#pragma once

#include "record/RecordingClock.h"
#include "recording/FrameTimesWriter.h"
#include "recording/saving/RecordingSaver.h"

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QRect>
#include <QString>
#include <QTimer>
#include <QVector>

#include <mutex>

class KelRecordKeyboardTrack;
class KelRecordMouseTrack;
class KelRecordTrack;
class KelRecordTrackThreadWrap;
class KelRecordVoiceTrack;
struct KelRecordingMetadata;

/// One recording: its tracks, the logic-frame clock that ties them together, and its metadata file. GUI thread.
///
/// The clock counts ticks, not captured frames: it never waits for a slow track, stops during a pause, and does not
/// catch up when the event loop delivers a tick late.
class KelRecordTrackManager : public QObject
{
    Q_OBJECT

public:
    /// The most logic frames that a reader of "frame_indexes.dat" accepts.
    static constexpr int kMaxFrames = 1'000'000;

    struct Config {
        QString directory;
        int fps = 25; ///< logic frames per second
        bool screen = true;
        bool mouse = false;
        bool keyboard = false;
        bool keepsKeysAcrossPauses = false;
        QVector<QKeySequence> controlShortcuts;
        bool systemAudio = false;
        bool microphone = false;
    };

    using Clock = kel::RecordingClock::TimeSource;

    /// Creates the directory and the tracks. The recorded time follows a monotonic clock, which adjustments of the
    /// system time do not affect.
    KelRecordTrackManager(const QRect &recordArea, const Config &config, QObject *parent = nullptr);
    KelRecordTrackManager(const QRect &recordArea, const Config &config, Clock now, QObject *parent);

    /// Stops a running recording and waits, up to a limit, for the tracks' files.
    ~KelRecordTrackManager() override;

    /// Starts a recording, or resumes a paused one.
    void startRecording();
    void pauseRecording();

    /// Asks every track to finish and writes the metadata. The tracks complete their files on their own threads.
    void stopRecording();

    /// Waits, for a limited time, until all tracks have completed their files, and frees the resources of the screen
    /// track. If that takes too long, returns false, and the destructor does it.
    bool releaseResources();

    /// Null when the recording has no such track. The tracks live on their own threads: callers may only use their
    /// capture switches.
    KelRecordMouseTrack *mouseTrack() const;
    KelRecordKeyboardTrack *keyboardTrack() const;

    /// The recording has kMaxFrames logic frames, and the clock has stopped.
    bool isAtFrameLimit() const { return m_frameIndex >= kMaxFrames; }

    struct Failure {
        QString track; ///< such as "Screen track"; empty for the recording as a whole
        QString problem;

        QString text() const { return track.isEmpty() ? problem : track + QStringLiteral(": ") + problem; }
    };

    /// Failures since the last call: the first of each track, in English. Any thread.
    QList<Failure> takeFailures();

signals:
    /// takeFailures() has new failures. Emitted on any thread.
    void trackFailed();

    void frameLimitReached();

protected:
    /// Takes ownership of `track` and gives it its own thread.
    void addTrack(KelRecordTrack *track);

private slots:
    void onFrameTimeout();
    void saveCheckpoint();

private:
    template <typename Track>
    Track *findTrack() const;
    void createTracks();
    QString createTrackDir(QLatin1String name);
    void addFailure(const QString &track, const QString &problem);

    KelRecordingMetadata metadata(qint64 durationMs) const;
    void saveMetadata(qint64 durationMs);
    void reportFailures(const kel::RecordingSaver::Failures &failures);
    void saveFrameTimes();
    void logStatistics(qint64 durationMs) const;

    QTimer m_frameTimer;
    QTimer m_checkpointTimer; // also runs while nothing ticks
    QList<KelRecordTrackThreadWrap *> m_threads;
    KelRecordVoiceTrack *m_voiceTrack = nullptr; // child of this; null without sound
    const QRect m_recordArea;                    // with even sides
    const Config m_config;

    bool m_isRecording = false; // also while paused
    kel::RecordingClock m_clock;
    int m_frameIndex = 0; // of the next logic frame
    kel::FrameTimesWriter m_frameTimes;
    bool m_hasReportedFrameTimes = false; // that they cannot be written

    // Per tick of this recording, to be inspected when the clock is slow; bounded by kMaxFrames.
    QList<qint64> m_tickCostMs;
    QList<double> m_instantFps;

    qint64 m_savedDurationMs = -1; // of the last checkpoint; -1 while there is nothing to save
    kel::RecordingSaver m_saver;
    kel::RecordingSaver::Failures m_reported; // those of the last checkpoint

    std::mutex m_failuresMutex;
    QList<Failure> m_failures;
};
