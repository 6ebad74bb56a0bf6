#pragma once

#include "cli/terminal/TerminalLine.h"
#include "common/ExitGuard.h"

#include <console/StopSignal.h>

#include <KelMovie/KelMultiTrackRecorder.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>
#include <QRect>
#include <QString>

/// Makes one recording from start to stop, and shows its progress on the terminal.
class RecordingSession : public QObject
{
    Q_OBJECT

public:
    /// `durationMs` 0 records until a stop signal.
    RecordingSession(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config, qint64 durationMs);

    /// Returns when the recording has ended, with an error message of one line or an empty string. After an error,
    /// everything recorded before it is kept.
    QString run();

    /// Whether the recording has started.
    bool hasRecorded() const { return m_hasRecorded; }

private:
    bool prepare();
    void completeAtExit();
    void rememberFailedTrack(const QString &track) { m_failedTrack = track; }
    void handleError(const QString &error);
    void showElapsed();

    const qint64 m_durationMs;
    KelMultiTrackRecorder m_recorder;
    kel::StopSignal m_stopSignal;
    TerminalLine m_line;
    QElapsedTimer m_elapsed;
    QEventLoop m_loop;
    QString m_failedTrack; // the track of the next error; empty if the error is not about a track
    QString m_error;
    ExitGuard m_exitGuard;
    bool m_isPrepared = false;
    bool m_hasRecorded = false;
    bool m_hasFailed = false;
};
