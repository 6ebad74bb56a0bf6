#include "recorder/RecordingController.h"

#include "common/FrameRate.h"
#include "common/Units.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMovieSelfTest.h>
#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelRecordingFiles.h>

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QRegion>
#include <QScreen>

#include <algorithm>
#include <limits>
#include <utility>

namespace
{

constexpr int kElapsedIntervalMs = 200;
constexpr int kMaxDelaySeconds = 60;

KelMultiTrackRecorder::RecordConfig configFromSettings(const QString &directory)
{
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = directory;
    config.fps = std::clamp(gKelMovieConfig.recordFps, 1, kMaxFps);
    config.enableMouse = gKelMovieConfig.recordMouse;
    config.enableKeyboard = gKelMovieConfig.recordKeyboard;
    config.keepsKeysAcrossPauses = true;
    config.enableSystemAudio = gKelMovieConfig.recordRecordSystemAudio;
    config.enableMicrophone = gKelMovieConfig.recordRecordMicrophone;
    return config;
}

} // namespace

RecordingController::RecordingController(std::function<QString()> newDirectory, QObject *parent)
    : QObject(parent)
    , m_newDirectory(std::move(newDirectory))
    , m_recorder(m_movie.createMultiTrackRecorder())
    , m_exitGuard([this] { completeAtExit(); })
{
    m_clock.setInterval(kElapsedIntervalMs);
    connect(&m_clock, &QTimer::timeout, this, [this] { emit elapsed(elapsedMs()); });
    m_countdown.setSingleShot(true);
    connect(&m_countdown, &QTimer::timeout, this, &RecordingController::countDown);
    connect(m_recorder, &KelMultiTrackRecorder::recordingPrepared, this, &RecordingController::beginCountdown);
    connect(m_recorder, &KelMultiTrackRecorder::recordingDeclined, this, [this] { setState(State::Idle); });
    connect(m_recorder, &KelMultiTrackRecorder::recordingStopped, this, &RecordingController::finish);
    connect(m_recorder, &KelMultiTrackRecorder::trackFailed, this,
            [this](const QString &track) { m_failedTrack = track; });
    connect(m_recorder, &KelMultiTrackRecorder::recordingError, this, &RecordingController::handleError);
    connect(&m_diskGuard, &DiskGuard::low, this, [this](qint64 freeBytes, qint64 secondsLeft) {
        const QString space = Units::bytes(freeBytes, QLocale());
        emit problem(Severity::Warning,
                     secondsLeft < 0 ? tr("The disk is almost full: %1 left.").arg(space)
                                     : tr("The disk is almost full: %1 left, enough for about %n minute(s).", nullptr,
                                          int(std::clamp<qint64>(secondsLeft / 60, 1, std::numeric_limits<int>::max())))
                                           .arg(space));
    });
    connect(&m_diskGuard, &DiskGuard::full, this, [this] {
        stopWithProblem(Severity::Warning, tr("The disk is full. The recording was stopped and saved."));
    });
    connect(&m_diskGuard, &DiskGuard::directoryLost, this, [this] {
        stopWithProblem(Severity::Error,
                        tr("The folder of the recording was deleted or moved. The recording was stopped."));
    });
    watchScreens();
}

RecordingController::~RecordingController()
{
    disconnect(m_recorder, nullptr, this, nullptr);
}

qint64 RecordingController::elapsedMs() const
{
    return m_elapsedBefore + (m_state == State::Recording ? m_running.elapsed() : 0);
}

void RecordingController::start(int minimumDelay)
{
    if (m_state != State::Idle)
        return;
    m_secondsLeft = std::clamp(std::max(gKelMovieConfig.recordDelay, minimumDelay), 0, kMaxDelaySeconds) + 1;
    setState(State::CountingDown);
    m_recorder->setRecordArea(m_area);
    m_recorder->setRecordConfig(configFromSettings({}));
    m_recorder->prepareRecording();
}

void RecordingController::beginCountdown()
{
    if (m_state == State::CountingDown)
        countDown();
}

void RecordingController::countDown()
{
    --m_secondsLeft;
    if (m_secondsLeft < 0)
        return startRecorder();
    emit countdown(m_secondsLeft);
    m_countdown.start(m_secondsLeft > 0 ? 1000 : kScreenSettleMs);
}

void RecordingController::startRecorder()
{
    const QString directory = m_newDirectory();
    if (!m_diskGuard.hasRoom(directory)) {
        setState(State::Idle);
        emit problem(Severity::Error, tr("There is not enough disk space for a recording."));
        return;
    }
    if (!QDir().mkpath(QFileInfo(directory).path())) {
        setState(State::Idle);
        emit problem(Severity::Error, tr("The folder \"%1\" cannot be created. Choose another folder in the settings.")
                                          .arg(QDir::toNativeSeparators(QFileInfo(directory).path())));
        return;
    }
    KelMultiTrackRecorder::RecordConfig config = configFromSettings(directory); // may have changed meanwhile
    config.controlShortcuts = m_shortcuts;
    m_recorder->setRecordConfig(config);
    warnOfMissingInput(config.enableMouse, config.enableKeyboard);
    if (!m_recorder->startRecording())
        return;
    m_directory = directory;
    m_elapsedBefore = 0;
    m_running.start();
    m_clock.start();
    setState(State::Recording);
    emit elapsed(0);
    m_diskGuard.watch(directory);
}

/// Once: whoever has read it may have reasons to go on without clicks.
void RecordingController::warnOfMissingInput(bool needsMouse, bool needsKeys)
{
    if (m_hasCheckedInput || (!needsMouse && !needsKeys))
        return;
    m_hasCheckedInput = true;
    const QString reason = KelMovieSelfTest::inputProblem(needsKeys);
    if (!reason.isEmpty())
        emit problem(Severity::Warning, tr("Clicks and keys are not recorded: %1").arg(reason));
}

void RecordingController::togglePause()
{
    if (m_state == State::Recording) {
        m_elapsedBefore = elapsedMs();
        m_recorder->pauseRecording();
        m_clock.stop();
        setState(State::Paused);
    } else if (m_state == State::Paused && m_recorder->startRecording()) {
        m_running.start();
        m_clock.start();
        setState(State::Recording);
    }
}

void RecordingController::stop()
{
    if (m_state == State::CountingDown) {
        m_countdown.stop();
        setState(State::Idle);
    } else if (isRecording()) {
        m_diskGuard.stop();
        m_recorder->stopRecording(); // its signal calls finish()
    }
}

/// The recorder has stopped: on request, or by itself at the maximum number of frames.
void RecordingController::finish()
{
    m_diskGuard.stop();
    m_clock.stop();
    const QString directory = std::exchange(m_directory, QString());
    setState(State::Idle);
    emit finished(directory);
}

void RecordingController::stopWithProblem(Severity severity, const QString &text)
{
    if (!isRecording())
        return;
    stop();
    emit problem(severity, text);
}

void RecordingController::handleError(const QString &error)
{
    const QString track = std::exchange(m_failedTrack, QString());
    if (track == KelTrackNames::kScreen) {
        // Queued because the recorder cannot be stopped from within its own signal. Something else may stop it first.
        QMetaObject::invokeMethod(
            this,
            [this, error] {
                if (isRecording())
                    stop();
                emit problem(Severity::Error,
                             tr("The screen can no longer be recorded. The recording was stopped; everything "
                                "up to now was saved.\n%1")
                                 .arg(error));
            },
            Qt::QueuedConnection);
    } else if (!m_recorder->isRecording()) {
        const bool isStarting = m_state == State::CountingDown;
        emit problem(Severity::Error, (isStarting ? tr("The recording could not be started.\n%1")
                                                  : tr("The recording is incomplete.\n%1"))
                                          .arg(error));
        if (isStarting)
            setState(State::Idle);
    } else {
        // A recording without one of the other tracks is still useful.
        emit problem(Severity::Warning,
                     track.isEmpty() ? error : tr("%1\nThe recording continues without it.").arg(error));
    }
}

void RecordingController::setKeysRecorded(bool recorded)
{
    if (isRecording() && m_recorder->recordConfig().enableKeyboard)
        m_recorder->setKeyboardRecordingEnabled(recorded);
}

void RecordingController::setMouseRecorded(bool recorded)
{
    if (isRecording() && m_recorder->recordConfig().enableMouse)
        m_recorder->setMouseRecordingEnabled(recorded);
}

void RecordingController::completeAtExit()
{
    disconnect(m_recorder, nullptr, this, nullptr); // there are no windows left that could show anything
    m_recorder->stopRecording();
}

void RecordingController::watchScreens()
{
    const auto watch = [this](const QScreen *screen) {
        connect(screen, &QScreen::geometryChanged, this, &RecordingController::stopIfAreaIsLost);
    };
    for (const QScreen *screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
    // Queued because the screen is still in the list when the signal is emitted.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &RecordingController::stopIfAreaIsLost,
            Qt::QueuedConnection);
}

void RecordingController::stopIfAreaIsLost()
{
    QRegion screens;
    for (const QScreen *screen : QGuiApplication::screens())
        screens += screen->geometry();
    if (isRecording() && !QRegion(m_area).subtracted(screens).isEmpty())
        stopWithProblem(
            Severity::Warning,
            tr("A screen was changed or disconnected, and the recorded area is no longer visible. The recording was "
               "stopped and saved."));
}

void RecordingController::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    if (state == State::Idle)
        m_recorder->cancelPreparation();
    emit stateChanged(state);
}
