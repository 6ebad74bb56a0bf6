#include "cli/commands/RecordingSession.h"

#include "cli/terminal/Console.h"
#include "common/DirectorySize.h"
#include "common/Units.h"

#include <KelMovie/KelRecordingFiles.h>

#include <QCoreApplication>
#include <QTimer>

#include <utility>

using namespace kel;

namespace
{
constexpr int ShowEveryMs = 250;
} // namespace

RecordingSession::RecordingSession(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config,
                                   qint64 durationMs)
    : m_durationMs(durationMs)
{
    m_recorder.setRecordArea(area);
    m_recorder.setRecordConfig(config);
    connect(&m_recorder, &KelMultiTrackRecorder::trackFailed, this, &RecordingSession::noteTrack);
    connect(&m_recorder, &KelMultiTrackRecorder::recordingError, this, &RecordingSession::fail);
    // It also ends by itself, at the largest number of frames that a recording can hold.
    connect(&m_recorder, &KelMultiTrackRecorder::recordingStopped, &m_loop, &QEventLoop::quit);
    connect(&m_stopSignal, &StopSignal::raised, &m_loop, &QEventLoop::quit);
}

QString RecordingSession::run()
{
    if (!m_recorder.startRecording())
        return m_error.isEmpty() ? QStringLiteral("the recording cannot be started") : m_error;
    m_hasRecorded = true;
    Console::print(QStringLiteral("Recording %1 at %2 frames a second\n")
                       .arg(Units::area(m_recorder.recordArea()))
                       .arg(m_recorder.recordConfig().fps));
    Console::flush();
    if (m_recorder.recordConfig().enableKeyboard) {
        Console::printError(QStringLiteral("keldock: keys typed anywhere on this desktop are being recorded, "
                                           "passwords too, until the recording ends"));
    }
    m_elapsed.start();

    QTimer end;
    end.setTimerType(Qt::PreciseTimer);
    end.setSingleShot(true);
    connect(&end, &QTimer::timeout, &m_loop, &QEventLoop::quit);
    if (m_durationMs > 0)
        end.start(static_cast<int>(m_durationMs));
    QTimer show;
    connect(&show, &QTimer::timeout, this, &RecordingSession::showElapsed);
    if (m_line.isShown())
        show.start(ShowEveryMs);

    // A failure that was reported from within startRecording() has quit a loop that did not run yet.
    if (!m_isLost)
        m_loop.exec();
    show.stop();
    m_line.clear();
    m_recorder.stopRecording();
    // A file that could not be completed is reported by a queued signal.
    QCoreApplication::processEvents();
    return m_isLost || m_error.isEmpty() ? m_error : QStringLiteral("the recording lacks a track. ") + m_error;
}

void RecordingSession::fail(const QString &error)
{
    if (m_error.isEmpty())
        m_error = error;
    // Without one of the others a recording of the screen is still worth going on with.
    const QString track = std::exchange(m_failedTrack, QString());
    if (m_hasRecorded && !track.isEmpty() && track != KelTrackNames::kScreen) {
        m_line.clear();
        Console::printError(QStringLiteral("keldock: %1; going on without").arg(error));
        return;
    }
    m_isLost = true;
    m_loop.quit();
}

void RecordingSession::showElapsed()
{
    QString text = QStringLiteral("%1 recording  %2")
                       .arg(Console::showsUnicode() ? QChar(0x25cf) : QLatin1Char('*'))
                       .arg(Units::clock(m_elapsed.elapsed()));
    if (m_durationMs > 0)
        text += QStringLiteral(" of ") + Units::clock(m_durationMs);
    m_line.show(QStringLiteral("%1  %2  Ctrl-C stops")
                    .arg(text, Units::bytes(directorySize(m_recorder.recordConfig().outputDir))));
}
