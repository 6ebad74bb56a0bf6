#include "export/KelExportPipeline.h"

#include "avcodec/audio/MixAudioVideoTracks.h"
#include "export/ExportDirectory.h"
#include "export/ExportFrameMap.h"
#include "export/ExportInternals.h"
#include "export/ExportLog.h"
#include "export/ExportOutput.h"
#include "export/ExportProgress.h"
#include "export/FrameExport.h"
#include "export/KelExportDependencies.h"
#include "export/KelExportSound.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "recording/KelRecordingFiles.h"
#include "tasks/BackgroundTasks.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QFileInfo>
#include <QPointer>
#include <QScopeGuard>
#include <QVariant>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <exception>
#include <future>

using namespace kel;

namespace
{

using Stage = KelExportMonitor::Status::Stage;

/// How long a cancelled export waits for its encoder to close the file, which it does after the current frame.
constexpr std::chrono::seconds kMaxWaitForRelease(2);

} // namespace

KelExportMonitor::~KelExportMonitor() = default;

class Q_DECL_HIDDEN KelExportPipeline::Private
{
public:
    Private(const KelExportRequest &wanted, KelExportMonitor *monitor, const KelExportDependencies &environment)
        : request(wanted)
        , progress(monitor)
        , log(progress)
        , dependencies(environment)
        , manager(wanted.playbackManager)
    {
    }

    bool runExport();
    QString requestProblem() const;
    bool exportFrames(const QString &path);
    bool mixAudio(KelExportSound &sound, const QString &video);
    bool waitForMix(KelExportSound &sound, const QString &video, const QString &output);
    QString voiceDir() const;
    KelExportSound::Range soundRange() const;
    bool placeFile(const QString &path);
    bool isMp4() const { return request.format == KelExportRequest::Mp4; }

    const KelExportRequest request;
    ExportProgress progress;
    ExportLog log;
    const KelExportDependencies dependencies;
    QPointer<KelPlaybackTrackManager> manager;  // a monitor that processes events may close the recording
    std::shared_ptr<ExportDirectory> directory; // of the file until it is complete
    Failure failure = Failure::None;
};

bool KelExportPipeline::Private::runExport()
{
    progress.report(0);
    failure = Failure::Start; // until that step is done
    if (progress.isCancelled())
        return false;
    const QString problem = requestProblem();
    if (!problem.isEmpty())
        return log.fail(problem);
    const QFileInfo output(request.outputPath);
    directory = std::make_shared<ExportDirectory>(output.path());
    if (!directory->isValid())
        return log.fail(QStringLiteral("Cannot create a temporary directory in ") + output.path(),
                        directory->errorString());
    const auto cleanUp = qScopeGuard([this] {
        if (!directory->remove()) // on systems where a file cannot be removed while an encoder has it open
            BackgroundTasks::wait(kMaxWaitForRelease);
    });
    const QString video =
        directory->filePath(isMp4() ? QStringLiteral("kel_temp_export_video.mp4") : output.fileName());
    if (!isMp4())
        return exportFrames(video) && placeFile(video);
    for (const QString &soundProblem : PlaybackInternals::engine(*manager).soundProblems())
        log.warn(soundProblem);
    // Before the frames are exported: the user may close the recording while the encoder finishes the file.
    KelExportSound sound(PlaybackInternals::engine(*manager).voiceTrack(), voiceDir(), soundRange(), directory->path());
    if (!exportFrames(video))
        return false;
    progress.report(ExportProgress::kVideoPercent);
    failure = Failure::Sound;
    return mixAudio(sound, video);
}

/// Problems that are known before the work begins.
QString KelExportPipeline::Private::requestProblem() const
{
    if (!manager)
        return QStringLiteral("Track manager is null");
    if (!manager->isValidRecording())
        return manager->errorString();
    if (!std::isfinite(request.speed) || request.speed <= 0.0)
        return QStringLiteral("Invalid export speed");
    if (request.fps < 1)
        return QStringLiteral("Invalid export frame rate");
    const QString problem = exportFormatProblem(request.outputPath, request.format);
    return problem.isEmpty() ? exportOutputProblem(request.outputPath, manager->recordDir()) : problem;
}

bool KelExportPipeline::Private::exportFrames(const QString &path)
{
    return FrameExport(request, directory, progress, log).run(path, dependencies, [this] { failure = Failure::Video; });
}

/// If the sound cannot be read, the export continues without it.
bool KelExportPipeline::Private::mixAudio(KelExportSound &sound, const QString &video)
{
    const auto report = qScopeGuard([&] {
        for (const QString &warning : sound.warnings())
            log.warn(warning);
    });
    const QString container = // selected by the suffix
        canMixInto(request.outputPath) ? QFileInfo(request.outputPath).suffix() : QStringLiteral("mp4");
    if (sound.isEmpty() && container == QLatin1String("mp4"))
        return placeFile(video);
    const QString mixed = directory->filePath(QLatin1String("kel_temp_export_mixed.") + container);
    if (waitForMix(sound, video, mixed))
        return placeFile(mixed);
    if (progress.isCancelled())
        return false;
    // Not without sound: the video would not fit either, or replace a file that has its sound.
    if (sound.error().isOutput)
        return log.fail(QStringLiteral("Failed to mix audio and video tracks"), sound.error().text);
    log.warn(QLatin1String("The sound could not be added: ") + sound.error().text);
    return placeFile(video);
}

/// Mixes on another thread, so that the user can cancel.
bool KelExportPipeline::Private::waitForMix(KelExportSound &sound, const QString &video, const QString &output)
{
    constexpr int units = 1000;
    constexpr int percents = ExportProgress::kSoundPercent - ExportProgress::kVideoPercent;
    std::future<bool> mixed = std::async(std::launch::async, [&] { return sound.addTo(video, output); });
    const auto stop = qScopeGuard([&] { sound.cancel(); }); // for a monitor that throws
    progress.begin(Stage::Sound, units);
    const auto isMixed = [&](auto limit) {
        progress.report(ExportProgress::kVideoPercent + qint64(percents * sound.progress()));
        progress.update(qint64(units * sound.progress()));
        return mixed.wait_for(limit) == std::future_status::ready;
    };
    if (!progress.wait(isMixed))
        sound.cancel();
    return mixed.get();
}

QString KelExportPipeline::Private::voiceDir() const
{
    QString dir = request.trackDataDir;
    if (dir.isEmpty())
        dir = manager->property("trackDataDir").toString();
    if (dir.isEmpty())
        dir = manager->recordDir();
    return KelRecordingFiles::path(dir, KelRecordingFiles::kVoiceDir);
}

/// The part of the sound that belongs to the exported frames.
KelExportSound::Range KelExportPipeline::Private::soundRange() const
{
    KelExportSound::Range sound;
    sound.speed = request.speed;
    sound.keepsPitch = manager->rules().keepsPitch;
    if (manager->durationMs() > 0)
        sound.recordedMs = double(manager->durationMs());
    const ExportFrameMap map = ExportFrameMap::forExport(*manager, request);
    if (const auto &range = map.range()) {
        sound.startMs = range->soundStartMs;
        sound.endMs = range->soundStartMs + range->endMs - range->startMs;
    }
    return sound;
}

/// Moves the file to its destination on another thread: the destination may be on another disk, and slow.
bool KelExportPipeline::Private::placeFile(const QString &path)
{
    if (progress.isCancelled())
        return false;
    const qint64 size = QFileInfo(path).size();
    std::atomic<qint64> copied{0};
    std::atomic<bool> isStopped{false};
    std::future<QString> placed = std::async(std::launch::async, [&] {
        return moveOverFile(path, request.outputPath, [&](qint64 bytes) {
            copied = bytes;
            return !isStopped;
        });
    });
    const auto stop = qScopeGuard([&] { isStopped = true; }); // for a monitor that throws
    progress.begin(Stage::Saving, size);
    const auto isPlaced = [&](auto limit) {
        progress.update(copied);
        return placed.wait_for(limit) == std::future_status::ready;
    };
    isStopped = !progress.wait(isPlaced);
    const QString problem = placed.get();
    if (!problem.isEmpty())
        return log.fail(isMp4() ? QStringLiteral("Failed to copy video file to output path")
                                : QStringLiteral("Failed to move the file to its destination"),
                        QStringLiteral("Cannot write %1: %2").arg(request.outputPath, problem));
    return true;
}

KelExportPipeline::KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor)
    : KelExportPipeline(request, monitor, KelExportDependencies::real())
{
}

KelExportPipeline::KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor,
                                     const KelExportDependencies &dependencies)
    : d(std::make_unique<Private>(request, monitor, dependencies))
{
}

KelExportPipeline::~KelExportPipeline() = default;

std::unique_ptr<KelExportPipeline> ExportInternals::createPipeline(const KelExportRequest &request,
                                                                   KelExportMonitor *monitor,
                                                                   const KelExportDependencies &dependencies)
{
    return std::unique_ptr<KelExportPipeline>(new KelExportPipeline(request, monitor, dependencies));
}

bool KelExportPipeline::run()
{
    try {
        const bool isComplete = d->runExport();
        if (isComplete)
            d->progress.report(100);
        if (isComplete || d->progress.wasCancelled())
            d->failure = Failure::None;
        return isComplete;
    } catch (const std::exception &problem) {
        d->failure = Failure::Exception;
        return d->log.fail(
            QStringLiteral("An error occurred during export: %1").arg(QString::fromUtf8(problem.what())));
    } catch (...) {
        d->failure = Failure::Exception;
        return d->log.fail(QStringLiteral("An unknown error occurred during export"));
    }
}

QString KelExportPipeline::errorString() const
{
    return d->log.error();
}

QString KelExportPipeline::warningString() const
{
    return d->log.warnings().join(QLatin1String("; "));
}

KelExportPipeline::Failure KelExportPipeline::failure() const
{
    return d->failure;
}
