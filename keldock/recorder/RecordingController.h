#pragma once

#include "common/ExitGuard.h"
#include "recorder/DiskGuard.h"

#include <KelMovie/KelMovieUI.h>

#include <QElapsedTimer>
#include <QKeySequence>
#include <QObject>
#include <QRect>
#include <QTimer>
#include <QVector>

#include <functional>

class KelMultiTrackRecorder;

/// Starts, pauses and stops recordings, one at a time, from the countdown to the complete files. GUI thread.
///
///     Idle --start--> CountingDown --> Recording <--togglePause--> Paused
///     any state --stop--> Idle; also on a full disk, a deleted directory, a disconnected screen or a failed screen
///     track
///
/// It has no user interface: it reports everything by signals.
class RecordingController : public QObject
{
    Q_OBJECT

public:
    /// CountingDown begins with the permission of the system, for which it may ask a person.
    enum class State { Idle, CountingDown, Recording, Paused };
    Q_ENUM(State)
    enum class Severity { Warning, Error };

    /// The time after which hidden windows have disappeared from the screen and what they covered is painted again.
    static constexpr int kScreenSettleMs = 150;

    /// `newDirectory` returns the directory for the next recording.
    explicit RecordingController(std::function<QString()> newDirectory, QObject *parent = nullptr);
    ~RecordingController() override;

    State state() const { return m_state; }
    /// Whether a recording is in progress, possibly paused.
    bool isRecording() const { return m_state == State::Recording || m_state == State::Paused; }
    /// The directory of the recording in progress; empty if there is none.
    QString directory() const { return m_directory; }
    /// The recorded time without pauses.
    qint64 elapsedMs() const;

    /// The area for the next recording, in logical pixels of the desktop.
    void setArea(const QRect &area) { m_area = area; }
    QRect area() const { return m_area; }

    /// The shortcuts for pause and stop, which the next recording leaves out when they are used.
    void setShortcuts(const QVector<QKeySequence> &shortcuts) { m_shortcuts = shortcuts; }

    DiskGuard &diskGuard() { return m_diskGuard; }

public slots:
    /// Obtains the permission of the system, counts down the delay of the settings, at least `minimumDelay` seconds,
    /// and starts to record.
    void start(int minimumDelay = 0);
    void togglePause();
    /// Stops and keeps the recording, or cancels the countdown.
    void stop();

    /// For the recording in progress only. Has no effect on a track that was not enabled at the start.
    void setKeysRecorded(bool recorded);
    void setMouseRecorded(bool recorded);

signals:
    void stateChanged(RecordingController::State state);
    /// Emitted each second during the countdown. At 0 nothing of the recorder may be left on the screen.
    void countdown(int secondsLeft);
    void elapsed(qint64 ms);
    /// The recording in `directory` is complete.
    void finished(const QString &directory);
    /// `text` is for the user.
    void problem(RecordingController::Severity severity, const QString &text);

private:
    void setState(State state);
    void beginCountdown();
    void countDown();
    void startRecorder();
    void warnOfMissingInput(bool needsMouse, bool needsKeys);
    void finish();
    void stopWithProblem(Severity severity, const QString &text);
    void handleError(const QString &error);
    void completeAtExit();
    void watchScreens();
    void stopIfAreaIsLost();

    const std::function<QString()> m_newDirectory;
    KelMovieUI m_movie;
    KelMultiTrackRecorder *const m_recorder;
    const ExitGuard m_exitGuard;
    DiskGuard m_diskGuard;
    bool m_hasCheckedInput = false;
    State m_state = State::Idle;
    QRect m_area;
    QVector<QKeySequence> m_shortcuts;
    QString m_directory;
    QTimer m_countdown;
    int m_secondsLeft = 0;
    QTimer m_clock;
    QElapsedTimer m_running;    // since the start or the last resume
    qint64 m_elapsedBefore = 0; // recorded time up to the last pause
    QString m_failedTrack;      // the track of the next error; empty if the error is not about a track
};
