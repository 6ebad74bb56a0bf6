#include "facade/RecordingControl.h"

#include "logging/Log.h"
#include "record/KelRecordKeyboardTrack.h"
#include "record/KelRecordMouseTrack.h"
#include "record/KelRecordTrackManager.h"
#include "recording/KelRecordingDirectory.h"
#include "recording/KelRecordingMetadata.h"
#include "screen/KelScreenManager.h"

#include <QDebug>

#include <exception>
#include <utility>

namespace kel
{

namespace
{

KelRecordTrackManager::Config managerConfig(const KelMultiTrackRecorder::RecordConfig &config, const QString &directory)
{
    KelRecordTrackManager::Config result;
    result.directory = directory;
    result.fps = config.fps;
    result.screen = config.enableScreen;
    result.mouse = config.enableMouse;
    result.keyboard = config.enableKeyboard;
    result.keepsKeysAcrossPauses = config.keepsKeysAcrossPauses;
    result.controlShortcuts = config.controlShortcuts;
    result.systemAudio = config.enableSystemAudio;
    result.microphone = config.enableMicrophone;
    return result;
}

} // namespace

RecordingControl::RecordingControl(KelMultiTrackRecorder *recorder)
    : m_recorder(recorder)
{
}

RecordingControl::~RecordingControl() = default;

void RecordingControl::prepare(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config)
{
    m_preparation.reset(); // first: the system may allow one at a time
    m_preparation = KelScreenManager::instance()->prepare(
        area, config.enableMouse, [this](const KelScreenPermission &permission) { endPreparation(permission); });
}

void RecordingControl::endPreparation(const KelScreenPermission &permission)
{
    using Answer = KelScreenPermission::Answer;
    if (permission.answer == Answer::Granted)
        emit prepared();
    else if (permission.answer == Answer::Declined)
        emit declined(permission.reason);
    else
        emit failed(permission.reason);
}

void RecordingControl::cancelPreparation()
{
    m_preparation.reset();
}

QString RecordingControl::start(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config)
{
    const auto preparation = std::move(m_preparation);
    try {
        const QString problem = createManager(area, config);
        if (!problem.isEmpty())
            return problem;
        if (KelRecordMouseTrack *track = m_manager->mouseTrack())
            track->setCaptureEnabled(config.mouseCaptureEnabled);
        m_manager->startRecording();
    } catch (const std::exception &exception) {
        return QString::fromLocal8Bit(exception.what());
    }
    m_isRecording = true;
    m_isPaused = false;
    emit started();
    return {};
}

QString RecordingControl::createManager(const QRect &area, const KelMultiTrackRecorder::RecordConfig &config)
{
    m_manager.reset(); // first: it may still be completing files in the same directory
    m_directory.reset();
    if (config.fps < 1 || config.fps > KelRecordingMetadata::kMaxFps) {
        return QStringLiteral("The frame rate %1 is not between 1 and %2")
            .arg(config.fps)
            .arg(KelRecordingMetadata::kMaxFps);
    }
    if (config.enableScreen) {
        const QString problem = KelScreenManager::instance()->errorString();
        if (!problem.isEmpty())
            return problem;
    }
    auto directory = std::make_unique<KelRecordingDirectory>(config.outputDir);
    if (!directory->prepare())
        return directory->errorString();

    m_manager = std::make_unique<KelRecordTrackManager>(area, managerConfig(config, directory->path()), m_recorder);
    // Queued: a host that reacts by starting a new recording deletes the manager, which must not be emitting then.
    connect(m_manager.get(), &KelRecordTrackManager::trackFailed, this, &RecordingControl::reportFailures,
            Qt::QueuedConnection);
    connect(m_manager.get(), &KelRecordTrackManager::frameLimitReached, this, &RecordingControl::onFrameLimitReached,
            Qt::QueuedConnection);

    const auto failures = m_manager->takeFailures();
    if (failures.isEmpty()) {
        m_directory = std::move(directory);
        return {};
    }
    m_manager.reset();
    directory->discard();
    return failures.first().text();
}

void RecordingControl::resume()
{
    m_manager->startRecording();
    m_isPaused = false;
    emit resumed();
}

void RecordingControl::pause()
{
    if (!m_isRecording || m_isPaused || !m_manager)
        return;
    m_manager->pauseRecording();
    m_isPaused = true;
    emit paused();
}

void RecordingControl::stop()
{
    if (!m_isRecording || !m_manager) {
        qCWarning(logRecord) << "[KelMultiTrackRecorder] 跳过停止录制 (未在录制或 recordManager 为空)";
        return;
    }
    qCWarning(logRecord) << "[KelMultiTrackRecorder] 调用 recordManager->stopRecording()";
    m_manager->stopRecording();
    qCWarning(logRecord) << "[KelMultiTrackRecorder] recordManager->stopRecording() 返回";
    qCWarning(logRecord) << "[KelMultiTrackRecorder] 调用 recordManager->releaseResources()";
    if (m_manager->releaseResources())
        m_directory->release();
    qCWarning(logRecord) << "[KelMultiTrackRecorder] recordManager->releaseResources() 返回";
    m_isRecording = false;
    m_isPaused = false;
    reportFailures(); // before stopped(): a host may quit in response to it
    qCWarning(logRecord) << "[KelMultiTrackRecorder] 发送 recordingStopped 信号";
    emit stopped();
    qCWarning(logRecord) << "[KelMultiTrackRecorder] recordingStopped 信号已发送";
}

void RecordingControl::setMouseEnabled(bool enabled)
{
    if (!m_isRecording)
        qCWarning(logRecord) << "KelMultiTrackRecorder: Cannot control mouse recording - not recording";
    else if (KelRecordMouseTrack *track = m_manager->mouseTrack())
        track->setCaptureEnabled(enabled);
    else
        qCWarning(logRecord) << "KelMultiTrackRecorder: Mouse track not found";
}

void RecordingControl::setKeyboardEnabled(bool enabled)
{
    if (!m_isRecording)
        qCWarning(logRecord) << "KelMultiTrackRecorder: Cannot control keyboard recording - not recording";
    else if (KelRecordKeyboardTrack *track = m_manager->keyboardTrack())
        enabled ? track->enableCapture() : track->disableCapture();
    else
        qCWarning(logRecord) << "KelMultiTrackRecorder: Keyboard track not found";
}

void RecordingControl::reportFailures()
{
    if (!m_manager)
        return;
    const auto failures = m_manager->takeFailures();
    for (const auto &failure : failures) {
        if (!failure.track.isEmpty())
            emit trackFailed(failure.track, failure.problem);
        emit failed(failure.text());
    }
}

void RecordingControl::onFrameLimitReached()
{
    // The host may have stopped, and even started a new recording, in the meantime.
    if (m_isRecording && m_manager && m_manager->isAtFrameLimit())
        emit frameLimitReached();
}

} // namespace kel
