#include "recorder/RecordingController.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelMultiTrackRecorder.h>
#include <KelMovie/KelRecordingFiles.h>

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QRegion>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace
{

constexpr int ClockMs = 200;
// What was shown must be gone from the screen, windows under it painted again, before the first picture is taken.
constexpr int ScreenSettlesMs = 150;
constexpr int MaxDelaySeconds = 60;
constexpr int MaxFps = 240;

} // namespace

RecordingController::RecordingController(std::function<QString()> newDirectory, QObject *parent)
    : QObject(parent)
    , m_newDirectory(std::move(newDirectory))
    , m_recorder(m_movie.createMultiTrackRecorder())
{
    m_clock.setInterval(ClockMs);
    connect(&m_clock, &QTimer::timeout, this, [this] { emit elapsed(elapsedMs()); });
    m_countdown.setSingleShot(true);
    connect(&m_countdown, &QTimer::timeout, this, &RecordingController::countDown);
    connect(m_recorder, &KelMultiTrackRecorder::recordingStopped, this, &RecordingController::complete);
    connect(m_recorder, &KelMultiTrackRecorder::trackFailed, this,
            [this](const QString &track) { m_failedTrack = track; });
    connect(m_recorder, &KelMultiTrackRecorder::recordingError, this, &RecordingController::takeError);
    connect(&m_diskGuard, &DiskGuard::low, this, [this](qint64 freeBytes, qint64 secondsLeft) {
        const QString room = QLocale().formattedDataSize(freeBytes, 1, QLocale::DataSizeSIFormat);
        emit problem(Severity::Warning, secondsLeft < 0
                                            ? tr("The disk is almost full: %1 left.").arg(room)
                                            : tr("The disk is almost full: %1 left, enough for about %2 min.")
                                                  .arg(room)
                                                  .arg(std::max<qint64>(1, secondsLeft / 60)));
    });
    connect(&m_diskGuard, &DiskGuard::full, this,
            [this] { stopBecause(Severity::Warning, tr("The disk is full. The recording has ended and was saved.")); });
    connect(&m_diskGuard, &DiskGuard::directoryLost, this, [this] {
        stopBecause(Severity::Error, tr("The folder of the recording was deleted or moved. The recording has ended."));
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
    m_secondsLeft = std::clamp(std::max(gKelMovieConfig.recordDelay, minimumDelay), 0, MaxDelaySeconds) + 1;
    setState(State::CountingDown);
    countDown();
}

void RecordingController::countDown()
{
    --m_secondsLeft;
    if (m_secondsLeft < 0)
        return record();
    emit countdown(m_secondsLeft);
    m_countdown.start(m_secondsLeft > 0 ? 1000 : ScreenSettlesMs);
}

void RecordingController::record()
{
    const QString directory = m_newDirectory();
    if (!m_diskGuard.hasRoom(directory)) {
        setState(State::Idle);
        emit problem(Severity::Error, tr("There is not enough room on the disk for a recording."));
        return;
    }
    if (!QDir().mkpath(QFileInfo(directory).path())) {
        setState(State::Idle);
        emit problem(Severity::Error, tr("The folder \"%1\" cannot be created. Choose another one in the settings.")
                                          .arg(QDir::toNativeSeparators(QFileInfo(directory).path())));
        return;
    }
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = directory;
    config.fps = std::clamp(gKelMovieConfig.recordFps, 1, MaxFps);
    config.enableMouse = gKelMovieConfig.recordMouse;
    config.enableKeyboard = gKelMovieConfig.recordKeyboard;
    config.enableSystemAudio = gKelMovieConfig.recordRecordSystemAudio;
    config.enableMicrophone = gKelMovieConfig.recordRecordMicrophone;
    m_recorder->setRecordConfig(config);
    m_recorder->setRecordArea(m_area);
    if (!m_recorder->startRecording())
        return setState(State::Idle);
    m_directory = directory;
    m_elapsedBefore = 0;
    m_running.start();
    m_clock.start();
    setState(State::Recording);
    emit elapsed(0);
    m_diskGuard.watch(directory);
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
        m_recorder->stopRecording(); // complete() follows by the recorder's signal
    }
}

/// The recorder has stopped, by wish or, at the largest number of frames, by itself.
void RecordingController::complete()
{
    m_diskGuard.stop();
    m_clock.stop();
    const QString directory = std::exchange(m_directory, QString());
    setState(State::Idle);
    emit finished(directory);
}

void RecordingController::stopBecause(Severity severity, const QString &text)
{
    if (!isRecording())
        return;
    stop();
    emit problem(severity, text);
}

void RecordingController::takeError(const QString &error)
{
    const QString track = std::exchange(m_failedTrack, QString());
    if (track == KelTrackNames::kScreen) {
        // Not from within the recorder's own work. By then the recording may have ended for another reason.
        QMetaObject::invokeMethod(
            this,
            [this, error] {
                if (isRecording())
                    stop();
                emit problem(Severity::Error,
                             tr("The screen cannot be recorded any more. The recording has ended; what "
                                "was recorded until now is kept.\n%1")
                                 .arg(error));
            },
            Qt::QueuedConnection);
    } else if (!m_recorder->isRecording()) {
        const bool isStarting = m_state == State::CountingDown;
        emit problem(Severity::Error, (isStarting ? tr("The recording could not be started.\n%1")
                                                  : tr("The recording lacks something.\n%1"))
                                          .arg(error));
    } else {
        // Without one of the other tracks a recording of the screen is still worth going on with.
        emit problem(Severity::Warning,
                     track.isEmpty() ? error : tr("%1\nThe recording goes on without it.").arg(error));
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

void RecordingController::watchScreens()
{
    const auto watch = [this](const QScreen *screen) {
        connect(screen, &QScreen::geometryChanged, this, &RecordingController::checkScreens);
    };
    for (const QScreen *screen : QGuiApplication::screens())
        watch(screen);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, watch);
    // When it is told, the screen is still in the list.
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &RecordingController::checkScreens, Qt::QueuedConnection);
}

void RecordingController::checkScreens()
{
    QRegion seen;
    for (const QScreen *screen : QGuiApplication::screens())
        seen += screen->geometry();
    if (isRecording() && !QRegion(m_area).subtracted(seen).isEmpty())
        stopBecause(Severity::Warning,
                    tr("A screen was changed or unplugged, and the recorded area is no longer on it. The recording has "
                       "ended and was saved."));
}

void RecordingController::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    emit stateChanged(state);
}
