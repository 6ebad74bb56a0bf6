#include "facade/KelMultiTrackRecorder.h"

#include "config/KelMovieConfig.h"
#include "export/KelExportPipeline.h"
#include "logging/Log.h"
#include "playback/KelPlaybackTrackManager.h"
#include "record/KelRecordKeyboardTrack.h"
#include "record/KelRecordMouseTrack.h"
#include "record/KelRecordTrackManager.h"
#include "recording/KelRecordingDirectory.h"
#include "recording/KelRecordingMetadata.h"
#include "screen/KelScreenManager.h"
#include "ui/export/KelPlaybackExportDialog.h"

#include <QApplication>
#include <QDebug>
#include <QVariant>

#include <exception>

namespace
{

enum class ExportResult { Complete, Cancelled, Failed };

/// In a dialog where the program has windows, else without a word until it is done.
ExportResult exportAsRequested(const KelExportRequest &request)
{
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        bool cancelled = false;
        if (KelPlaybackExportDialog::run(request, QApplication::activeWindow(), &cancelled))
            return ExportResult::Complete;
        return cancelled ? ExportResult::Cancelled : ExportResult::Failed;
    }
    KelExportPipeline pipeline(request);
    if (pipeline.run())
        return ExportResult::Complete;
    qCWarning(kel::logRecord).noquote() << "[KelMultiTrackRecorder] Export failed:" << pipeline.errorString();
    return ExportResult::Failed;
}

} // namespace

class Q_DECL_HIDDEN KelMultiTrackRecorder::Private
{
public:
    QString createManager(KelMultiTrackRecorder *recorder);

    QRect recordArea;
    RecordConfig config;
    std::unique_ptr<KelRecordTrackManager> recordManager;
    std::unique_ptr<KelPlaybackTrackManager> playbackManager;
    bool isRecording = false;
    bool isPaused = false;
    QString lastError;
};

/// Empty when a recording can start; else why it cannot, and nothing is left of it.
QString KelMultiTrackRecorder::Private::createManager(KelMultiTrackRecorder *recorder)
{
    recordManager.reset(); // first: it may still be completing files of the same directory
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
    KelRecordingDirectory directory(config.outputDir);
    if (!directory.prepare())
        return directory.errorString();

    KelRecordTrackManager::Config managerConfig;
    managerConfig.directory = config.outputDir;
    managerConfig.fps = config.fps;
    managerConfig.screen = config.enableScreen;
    managerConfig.mouse = config.enableMouse;
    managerConfig.keyboard = config.enableKeyboard;
    managerConfig.systemAudio = config.enableSystemAudio;
    managerConfig.microphone = config.enableMicrophone;
    recordManager = std::make_unique<KelRecordTrackManager>(recordArea, managerConfig, recorder);

    // Queued: a host that reacts by starting anew deletes the manager that is just emitting.
    connect(recordManager.get(), &KelRecordTrackManager::trackFailed, recorder,
            &KelMultiTrackRecorder::reportTrackFailures, Qt::QueuedConnection);
    connect(recordManager.get(), &KelRecordTrackManager::frameLimitReached, recorder,
            &KelMultiTrackRecorder::stopAtFrameLimit, Qt::QueuedConnection);

    const auto failures = recordManager->takeFailures();
    if (failures.isEmpty())
        return {};
    recordManager.reset();
    directory.discard();
    return failures.first().text();
}

KelMultiTrackRecorder::KelMultiTrackRecorder(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>())
{
}

KelMultiTrackRecorder::~KelMultiTrackRecorder()
{
    d->recordManager.reset();
    d->playbackManager.reset();
}

void KelMultiTrackRecorder::setRecordArea(const QRect &area)
{
    d->recordArea = area;
}

QRect KelMultiTrackRecorder::recordArea() const
{
    return d->recordArea;
}

void KelMultiTrackRecorder::setRecordConfig(const RecordConfig &config)
{
    d->config = config;
}

KelMultiTrackRecorder::RecordConfig KelMultiTrackRecorder::recordConfig() const
{
    return d->config;
}

bool KelMultiTrackRecorder::isRecording() const
{
    return d->isRecording;
}

bool KelMultiTrackRecorder::isPaused() const
{
    return d->isPaused;
}

bool KelMultiTrackRecorder::startRecording()
{
    if (d->isRecording) {
        if (!d->isPaused)
            return false;
        d->recordManager->startRecording();
        d->isPaused = false;
        emit recordingResumed();
        return true;
    }
    if (d->recordArea.isEmpty()) {
        reportError(QStringLiteral("Record area not set"));
        return false;
    }

    QString problem;
    try {
        problem = d->createManager(this);
        if (problem.isEmpty()) {
            if (KelRecordMouseTrack *track = d->recordManager->mouseTrack())
                track->setCaptureEnabled(d->config.mouseCaptureEnabled);
            d->recordManager->startRecording();
        }
    } catch (const std::exception &exception) {
        problem = QString::fromLocal8Bit(exception.what());
    }
    if (!problem.isEmpty()) {
        reportError(QStringLiteral("Failed to start recording: %1").arg(problem));
        return false;
    }
    d->isRecording = true;
    d->isPaused = false;
    emit recordingStarted();
    return true;
}

void KelMultiTrackRecorder::pauseRecording()
{
    if (!d->isRecording || d->isPaused || !d->recordManager)
        return;
    d->recordManager->pauseRecording();
    d->isPaused = true;
    emit recordingPaused();
}

void KelMultiTrackRecorder::stopRecording()
{
    qCInfo(kel::logRecord) << "[KelMultiTrackRecorder::stopRecording] Starting to stop recording";
    qCInfo(kel::logRecord) << "[KelMultiTrackRecorder] this pointer:" << static_cast<void *>(this);
    qCInfo(kel::logRecord) << "[KelMultiTrackRecorder] d->isRecording:" << d->isRecording;
    qCInfo(kel::logRecord) << "[KelMultiTrackRecorder] d->recordManager pointer:"
                           << static_cast<void *>(d->recordManager.get());
    if (!d->isRecording || !d->recordManager) {
        qCWarning(kel::logRecord) << "[KelMultiTrackRecorder] 跳过停止录制 (未在录制或 recordManager 为空)";
    } else {
        qCWarning(kel::logRecord) << "[KelMultiTrackRecorder] 调用 recordManager->stopRecording()";
        d->recordManager->stopRecording();
        qCWarning(kel::logRecord) << "[KelMultiTrackRecorder] recordManager->stopRecording() 返回";
        qCWarning(kel::logRecord) << "[KelMultiTrackRecorder] 调用 recordManager->releaseResources()";
        d->recordManager->releaseResources();
        qCWarning(kel::logRecord) << "[KelMultiTrackRecorder] recordManager->releaseResources() 返回";
        d->isRecording = false;
        d->isPaused = false;
        reportTrackFailures(); // a host may quit when it hears that the recording has stopped
        qCWarning(kel::logRecord) << "[KelMultiTrackRecorder] 发送 recordingStopped 信号";
        emit recordingStopped();
        qCWarning(kel::logRecord) << "[KelMultiTrackRecorder] recordingStopped 信号已发送";
    }
    qCInfo(kel::logRecord) << "[KelMultiTrackRecorder::stopRecording] Completed";
}

void KelMultiTrackRecorder::setMouseRecordingEnabled(bool enabled)
{
    if (!d->isRecording)
        qCWarning(kel::logRecord) << "KelMultiTrackRecorder: Cannot control mouse recording - not recording";
    else if (KelRecordMouseTrack *track = d->recordManager->mouseTrack())
        track->setCaptureEnabled(enabled);
    else
        qCWarning(kel::logRecord) << "KelMultiTrackRecorder: Mouse track not found";
}

void KelMultiTrackRecorder::setKeyboardRecordingEnabled(bool enabled)
{
    if (!d->isRecording)
        qCWarning(kel::logRecord) << "KelMultiTrackRecorder: Cannot control keyboard recording - not recording";
    else if (KelRecordKeyboardTrack *track = d->recordManager->keyboardTrack())
        enabled ? track->enableCapture() : track->disableCapture();
    else
        qCWarning(kel::logRecord) << "KelMultiTrackRecorder: Keyboard track not found";
}

bool KelMultiTrackRecorder::loadRecording(const QString &dir)
{
    d->playbackManager.reset();
    try {
        d->playbackManager =
            std::make_unique<KelPlaybackTrackManager>(dir, gKelMovieConfig.recordEnableHardwareAcceleration, this);
    } catch (const std::exception &exception) {
        reportError(QStringLiteral("Failed to load recording: %1").arg(QString::fromLocal8Bit(exception.what())));
        return false;
    }
    return true;
}

KelPlaybackTrackManager *KelMultiTrackRecorder::playbackManager() const
{
    return d->playbackManager.get();
}

bool KelMultiTrackRecorder::exportToVideo(const QString &path, int format)
{
    KelExportRequest request;
    request.format = format;
    request.fps = 25;
    request.quality = KelMovieExportQuality();
    request.outputPath = path;
    return runExport(request, QStringLiteral("Failed to start export"));
}

bool KelMultiTrackRecorder::exportToGif(const QString &path, int)
{
    return exportToVideo(path, 1);
}

bool KelMultiTrackRecorder::exportToVideoWithTrim(const QString &path, int format, int trimStart, int trimEnd, int,
                                                  int fps)
{
    KelExportRequest request;
    request.format = format;
    request.fps = fps;
    request.quality = KelMovieExportQuality(100);
    request.outputPath = path;
    if (trimStart >= 0 && trimEnd >= 0) {
        request.trimStartMs = trimStart;
        request.trimEndMs = trimEnd;
    }
    if (d->playbackManager)
        request.trackDataDir = d->playbackManager->property("trackDataDir").toString();
    return runExport(request, QStringLiteral("Failed to start export with audio trim"));
}

bool KelMultiTrackRecorder::runExport(KelExportRequest request, const QString &failure)
{
    if (!d->playbackManager) {
        reportError(QStringLiteral("No recording loaded for export"));
        return false;
    }
    request.playbackManager = d->playbackManager.get();
    request.speed = d->playbackManager->speed();
    request.loops = gKelMovieConfig.encodeGifPlayLoop;
    request.autoExitAfterEncode = gKelMovieConfig.encodeExitRecordAfterEncode;
    request.onExitRecord = KelMovieSaveExitRecordAfterEncode;
    const ExportResult result = exportAsRequested(request);
    if (result == ExportResult::Failed)
        reportError(failure);
    return result == ExportResult::Complete;
}

QString KelMultiTrackRecorder::lastError() const
{
    return d->lastError;
}

void KelMultiTrackRecorder::reportError(const QString &error)
{
    d->lastError = error;
    emit recordingError(error);
}

void KelMultiTrackRecorder::reportTrackFailures()
{
    if (!d->recordManager)
        return;
    const auto failures = d->recordManager->takeFailures();
    for (const auto &failure : failures) {
        if (!failure.track.isEmpty())
            emit trackFailed(failure.track, failure.problem);
        reportError(failure.text());
    }
}

void KelMultiTrackRecorder::stopAtFrameLimit()
{
    // The host may have stopped, and even started anew, in the meantime.
    if (!d->isRecording || !d->recordManager || !d->recordManager->isAtFrameLimit())
        return;
    reportError(QStringLiteral("The recording was stopped: it has reached the limit of %1 frames")
                    .arg(KelRecordTrackManager::MaxFrames));
    stopRecording();
}
