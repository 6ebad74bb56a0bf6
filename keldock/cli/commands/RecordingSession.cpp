#include "cli/commands/RecordingSession.h"

#include "cli/terminal/Console.h"
#include "common/DirectorySize.h"
#include "common/Units.h"

#include <KelMovie/KelRecordingFiles.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QTimer>

#include <utility>

using namespace kel;

namespace
{
constexpr int kUpdateIntervalMs = 250;
constexpr int kHintAfterMs = 1000; // to a person who may not see a question of the system
} // namespace

RecordingSession::RecordingSession(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config,
                                   qint64 durationMs)
    : m_durationMs(durationMs)
    , m_exitGuard([this] { completeAtExit(); })
{
    m_recorder.setRecordArea(area);
    m_recorder.setRecordConfig(config);
    connect(&m_recorder, &KelMultiTrackRecorder::trackFailed, this, &RecordingSession::rememberFailedTrack);
    connect(&m_recorder, &KelMultiTrackRecorder::recordingError, this, &RecordingSession::handleError);
    connect(&m_recorder, &KelMultiTrackRecorder::recordingPrepared, this, [this] {
        m_isPrepared = true;
        m_loop.quit();
    });
    connect(&m_recorder, &KelMultiTrackRecorder::recordingDeclined, this, &RecordingSession::handleError);
    // The recorder also stops by itself at the maximum number of frames.
    connect(&m_recorder, &KelMultiTrackRecorder::recordingStopped, &m_loop, &QEventLoop::quit);
    connect(&m_stopSignal, &StopSignal::raised, &m_loop, &QEventLoop::quit);
}

/// False after an error, which is reported, and after a stop signal.
bool RecordingSession::prepare()
{
    m_recorder.prepareRecording();
    if (!m_isPrepared && !m_hasFailed) {
        QTimer hint;
        hint.setSingleShot(true);
        connect(&hint, &QTimer::timeout, [] {
            Console::printError(QStringLiteral("keldock: waiting until you allow the recording in the dialog of your "
                                               "desktop; Ctrl-C cancels"));
        });
        hint.start(kHintAfterMs);
        m_loop.exec();
    }
    return m_isPrepared;
}

QString RecordingSession::run()
{
    if (!prepare())
        return m_error.isEmpty() ? QStringLiteral("the recording was cancelled") : m_error;
    if (!m_recorder.startRecording())
        return m_error.isEmpty() ? QStringLiteral("the recording cannot be started") : m_error;
    m_hasRecorded = true;
    Console::print(QStringLiteral("Recording %1 at %2 fps\n")
                       .arg(Units::area(m_recorder.recordArea()))
                       .arg(m_recorder.recordConfig().fps));
    Console::flush();
    if (m_recorder.recordConfig().enableKeyboard) {
        Console::printError(QStringLiteral("keldock: everything typed on this desktop is recorded, including "
                                           "passwords, until the recording ends"));
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
        show.start(kUpdateIntervalMs);

    // An error within startRecording() was reported before the loop could be quit.
    if (!m_hasFailed)
        m_loop.exec();
    show.stop();
    m_line.clear();
    m_recorder.stopRecording();
    // Errors on completing a file are reported by a queued signal.
    QCoreApplication::processEvents();
    return m_hasFailed || m_error.isEmpty() ? m_error : QLatin1String("the recording is incomplete: ") + m_error;
}

void RecordingSession::completeAtExit()
{
    if (!m_recorder.isRecording())
        return;
    m_line.clear();
    Console::printError(QStringLiteral("keldock: the connection to the desktop is lost; saving the recording"));
    m_recorder.stopRecording();
}

void RecordingSession::handleError(const QString &error)
{
    // A recording without one of the other tracks is still useful, and so is one without its latest metadata.
    const QString track = std::exchange(m_failedTrack, QString());
    const bool isDirectoryLost = !QFileInfo::exists(m_recorder.recordConfig().outputDir);
    const bool isFatal = !m_hasRecorded || track == KelTrackNames::kScreen || isDirectoryLost;
    if (m_error.isEmpty() || (isFatal && !m_hasFailed)) // what ended the recording matters most
        m_error = error;
    if (!isFatal) {
        m_line.clear();
        Console::printError(
            (track.isEmpty() ? QStringLiteral("keldock: %1") : QStringLiteral("keldock: %1; continuing without it"))
                .arg(error));
        return;
    }
    m_hasFailed = true;
    m_loop.quit();
}

void RecordingSession::showElapsed()
{
    QString text = QStringLiteral("%1 recording  %2")
                       .arg(Console::showsUnicode() ? QChar(0x25cf) : QLatin1Char('*'))
                       .arg(Units::clock(m_elapsed.elapsed()));
    if (m_durationMs > 0)
        text += QLatin1String(" of ") + Units::clock(m_durationMs);
    m_line.show(QStringLiteral("%1  %2  Press Ctrl-C to stop")
                    .arg(text, Units::bytes(directorySize(m_recorder.recordConfig().outputDir))));
}
