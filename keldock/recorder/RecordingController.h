#pragma once

#include "recorder/DiskGuard.h"

#include <KelMovie/KelMovieUI.h>

#include <QElapsedTimer>
#include <QObject>
#include <QRect>
#include <QTimer>

#include <functional>

class KelMultiTrackRecorder;

/// One recording after the other, from the wish to record to the recording on disk. GUI thread.
///
///     Idle --start--> CountingDown --> Recording <--togglePause--> Paused
///     any --stop--> Idle; so do a full disk, a lost directory, a screen that goes away and a picture that fails
///
/// What it does and for which reason is told by signals; it shows nothing itself.
class RecordingController : public QObject
{
    Q_OBJECT

public:
    enum class State { Idle, CountingDown, Recording, Paused };
    Q_ENUM(State)
    enum class Severity { Warning, Error };

    /// `newDirectory` says where the next recording goes.
    explicit RecordingController(std::function<QString()> newDirectory, QObject *parent = nullptr);
    ~RecordingController() override;

    State state() const { return m_state; }
    /// Something is on disk that has to be completed.
    bool isRecording() const { return m_state == State::Recording || m_state == State::Paused; }
    /// Of the recording under way; empty when there is none.
    QString directory() const { return m_directory; }
    qint64 elapsedMs() const;

    /// What is recorded next, in logical pixels of the desktop.
    void setArea(const QRect &area) { m_area = area; }
    QRect area() const { return m_area; }

    DiskGuard &diskGuard() { return m_diskGuard; }

public slots:
    /// Counts down as the settings want it, at least `minimumDelay` seconds, and records.
    void start(int minimumDelay = 0);
    void togglePause();
    /// Ends the recording, and keeps it; also ends a countdown.
    void stop();

    /// For as long as this recording goes on.
    void setKeysRecorded(bool recorded);
    void setMouseRecorded(bool recorded);

signals:
    void stateChanged(RecordingController::State state);
    /// During the countdown; 0 when everything has to be gone from the screen.
    void countdown(int secondsLeft);
    void elapsed(qint64 ms);
    void finished(const QString &directory);
    void problem(RecordingController::Severity severity, const QString &text);

private:
    void setState(State state);
    void countDown();
    void record();
    void complete();
    void stopBecause(Severity severity, const QString &text);
    void takeError(const QString &error);
    void watchScreens();
    void checkScreens();

    const std::function<QString()> m_newDirectory;
    KelMovieUI m_movie;
    KelMultiTrackRecorder *const m_recorder;
    DiskGuard m_diskGuard;
    State m_state = State::Idle;
    QRect m_area;
    QString m_directory;
    QTimer m_countdown;
    int m_secondsLeft = 0;
    QTimer m_clock;
    QElapsedTimer m_running;    // since start or resume
    qint64 m_elapsedBefore = 0; // of the stretches before the last pause
    QString m_failedTrack;      // of the next error; empty for one that is no track's
};
