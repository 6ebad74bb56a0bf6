#pragma once

#include <QList>
#include <QObject>
#include <QRect>
#include <QString>
#include <QTimer>

#include <functional>
#include <mutex>

class KelRecordKeyboardTrack;
class KelRecordMouseTrack;
class KelRecordTrack;
class KelRecordTrackThreadWrap;
class KelRecordVoiceTrack;
struct KelRecordingMetadata;

/// One recording: its tracks, the logic-frame clock that ties them together, and its metadata file. GUI thread.
///
/// The clock counts ticks, not pictures: it never waits for a slow track, stands still while paused, and does not make
/// up for ticks that the event loop delivers late.
class KelRecordTrackManager : public QObject
{
    Q_OBJECT

public:
    /// As many logic frames as a reader of "frame_indexes.dat" accepts.
    static constexpr int MaxFrames = 1'000'000;

    struct Config {
        QString directory;
        int fps = 25;
        bool screen = true;
        bool mouse = false;
        bool keyboard = false;
        bool systemAudio = false;
        bool microphone = false;
    };

    /// Milliseconds since the epoch.
    using Clock = std::function<qint64()>;

    /// Creates the directory and the tracks. The recorded time follows a clock that no adjustment of the system's time
    /// disturbs.
    KelRecordTrackManager(const QRect &recordArea, const Config &config, QObject *parent = nullptr);
    KelRecordTrackManager(const QRect &recordArea, const Config &config, Clock now, QObject *parent);

    /// Stops a running recording and waits, bounded, for the tracks' files.
    ~KelRecordTrackManager() override;

    /// Starts, or resumes when paused.
    void startRecording();
    void pauseRecording();

    /// Asks every track to finish and writes the metadata. The tracks complete their files on their own threads.
    void stopRecording();

    /// Frees what the screen track holds, once its thread has completed its files. What takes too long is left to the
    /// destructor.
    void releaseResources();

    /// Null when the recording has no such track. They live on threads of their own: only their capture switches may be
    /// used from here.
    KelRecordMouseTrack *mouseTrack() const;
    KelRecordKeyboardTrack *keyboardTrack() const;

    /// The frames that fit into a recording have been ticked; the clock stands still.
    bool isAtFrameLimit() const { return m_frameIndex >= MaxFrames; }

    struct Failure {
        QString track; ///< such as "Screen track"; empty: the recording as a whole
        QString problem;

        QString text() const { return track.isEmpty() ? problem : track + QStringLiteral(": ") + problem; }
    };

    /// What went wrong since the last call: the first failure of each track, in English. Any thread.
    QList<Failure> takeFailures();

signals:
    /// takeFailures() has something to tell. Emitted on any thread.
    void trackFailed();

    void frameLimitReached();

protected:
    /// Takes ownership and gives the track a thread of its own.
    void addTrack(KelRecordTrack *track);

private slots:
    void onFrameTimeout();

private:
    template <typename Track>
    Track *findTrack() const;
    void createTracks();
    QString createTrackDir(QLatin1String name) const;
    void addFailure(const QString &track, const QString &problem);

    qint64 recordedMs() const;
    KelRecordingMetadata metadata(qint64 durationMs) const;
    void saveMetadata(qint64 durationMs);
    void saveCheckpoint();
    void logStatistics(qint64 durationMs) const;

    QTimer m_frameTimer;
    QList<KelRecordTrackThreadWrap *> m_threads;
    KelRecordVoiceTrack *m_voiceTrack = nullptr; // child of this; null without sound
    const QRect m_recordArea;                    // with even sides
    const Config m_config;
    const Clock m_now;

    bool m_isRecording = false;
    bool m_isPaused = false;
    int m_frameIndex = 0; // of the next logic frame
    qint64 m_startTimeMs = 0;
    qint64 m_pausedTotalMs = 0;
    qint64 m_pauseStartMs = 0;
    qint64 m_lastCheckpointMs = 0;

    // Of each tick of this recording, for whoever examines a slow clock; bounded by MaxFrames.
    QList<qint64> m_tickCostMs;
    QList<double> m_instantFps;

    std::mutex m_failuresMutex;
    QList<Failure> m_failures;
};
