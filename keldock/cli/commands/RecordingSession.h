#pragma once

#include "cli/terminal/TerminalLine.h"
#include <console/StopSignal.h>

#include <KelMovie/KelMultiTrackRecorder.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QObject>
#include <QRect>
#include <QString>

/// One recording from start to stop, with a line on the terminal that shows that it is under way.
class RecordingSession : public QObject
{
    Q_OBJECT

public:
    /// A duration of 0 means until a signal ends it.
    RecordingSession(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config, qint64 durationMs);

    /// Records. Answers in one line what failed, empty when nothing did; what was recorded until then is kept.
    QString run();

    bool hasRecorded() const { return m_hasRecorded; }

private:
    void noteTrack(const QString &track) { m_failedTrack = track; }
    void fail(const QString &error);
    void showElapsed();

    const qint64 m_durationMs;
    KelMultiTrackRecorder m_recorder;
    kel::StopSignal m_stopSignal;
    TerminalLine m_line;
    QElapsedTimer m_elapsed;
    QEventLoop m_loop;
    QString m_failedTrack; // of the next error; empty for one that is no track's
    QString m_error;
    bool m_hasRecorded = false;
    bool m_isLost = false;
};
