#include "export/KelExportPipeline.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "avcodec/audio/MixAudioVideoTracks.h"
#include "export/BackgroundTasks.h"
#include "export/ExportCanvas.h"
#include "export/ExportEncoder.h"
#include "export/ExportFrameMap.h"
#include "export/ExportOutput.h"
#include "export/ExportWatch.h"
#include "export/KelExportSeams.h"
#include "export/KelExportSound.h"
#include "logging/Log.h"
#include "playback/KelPlaybackTrackManager.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QScopeGuard>
#include <QStringList>
#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <cmath>
#include <exception>
#include <future>

using namespace kel;

namespace
{

using Stage = KelExportMonitor::Status::Stage;

constexpr int kFormatMp4 = 0;
constexpr int kLoopPercent = 90;
constexpr int kVideoPercent = 95;
constexpr int kMixedPercent = 99;
constexpr int kMaxLoops = 65535;

/// Frames of one picture that an encoder repeats in one go: few enough for its queue to stay short in time.
constexpr int kRepeatedAtOnce = 64;

/// An encoder lets go of its file when it is through with the picture that it is working at.
constexpr std::chrono::seconds kLettingGo(2);

/// As the encoders of animations understand it; empty: endlessly.
QString loopsText(int loops)
{
    return loops > 0 ? QString("loop=%1").arg(std::min(loops, kMaxLoops)) : QString();
}

} // namespace

KelExportMonitor::~KelExportMonitor() = default;

class Q_DECL_HIDDEN KelExportPipeline::Private
{
public:
    Private(const KelExportRequest &wanted, KelExportMonitor *monitor, const KelExportSeams &outside)
        : request(wanted)
        , watch(monitor)
        , seams(outside)
        , manager(wanted.playbackManager)
    {
    }

    bool runExport();
    QString requestProblem() const;
    bool exportFrames(const QString &path);
    bool encodeRange(const QString &path);
    bool encodeFrames(ExportEncoder &encoder, const ExportFrameMap &map, ExportCanvas &canvas);
    bool showFrame(int frame);
    bool closeEncoder(ExportEncoder &encoder, qint64 frames);
    void keepFirstPart(ExportEncoder &encoder, const QString &path);
    bool checkWritten(const QString &path);
    bool mixAudio(KelExportSound &sound, const QString &video);
    bool waitForMix(KelExportSound &sound, const QString &video, const QString &output);
    QString voiceDir() const;
    ExportFrameMap frameMap() const;
    KelExportSound::Range soundRange() const;
    bool placeFile(const QString &path);
    bool isMp4() const { return request.format == kFormatMp4; }
    bool fail(const QString &text, const QString &detail = QString());
    void warn(const QString &text);

    const KelExportRequest request;
    ExportWatch watch;
    const KelExportSeams seams;
    QPointer<KelPlaybackTrackManager> manager; // a monitor that handles events may let the user close the recording
    std::shared_ptr<QTemporaryDir> directory;  // of the file while it is being made
    Failure failure = Failure::None;
    QString errorString;
    QStringList warnings;
};

bool KelExportPipeline::Private::fail(const QString &text, const QString &detail)
{
    if (watch.wasCancelled())
        return false;
    qCWarning(logExport).noquote() << text;
    errorString = text;
    if (!detail.isEmpty()) {
        qCWarning(logExport).noquote() << "[KelExportPipeline]" << detail;
        errorString += ": " + detail;
    }
    return false;
}

void KelExportPipeline::Private::warn(const QString &text)
{
    qCWarning(logExport).noquote() << "[KelExportPipeline]" << text;
    warnings.append(text);
}

bool KelExportPipeline::Private::runExport()
{
    watch.report(0);
    failure = Failure::Video; // until that step is done
    if (watch.isCancelled())
        return false;
    const QString problem = requestProblem();
    if (!problem.isEmpty())
        return fail(problem);
    // A directory of our own: nobody can have put a link or another file in the place of the video. Other formats than
    // MP4 are complete then and need to be moved only, so they are made beside their place.
    const QFileInfo output(request.outputPath);
    directory = std::make_shared<QTemporaryDir>(isMp4() ? QDir::tempPath() + "/kel_temp_export_XXXXXX"
                                                        : output.path() + "/.kel_export_XXXXXX");
    if (!directory->isValid())
        return fail("Cannot create a temporary directory", directory->errorString());
    const auto cleanUp = qScopeGuard([this] {
        if (!directory->remove()) // where a file cannot go while an encoder has it
            BackgroundTasks::wait(kLettingGo);
    });
    const QString video = directory->filePath(isMp4() ? "kel_temp_export_video.mp4" : output.fileName());
    if (!isMp4())
        return exportFrames(video) && placeFile(video);
    // Chosen now: the user may close the recording while the video is being finished.
    KelExportSound sound(manager->voiceTrack(), voiceDir(), soundRange(), directory->path());
    if (!exportFrames(video))
        return false;
    watch.report(kVideoPercent);
    failure = Failure::Sound;
    return mixAudio(sound, video);
}

/// What can be known to go wrong before minutes of work.
QString KelExportPipeline::Private::requestProblem() const
{
    if (!manager)
        return "Track manager is null";
    if (!manager->isValidRecording())
        return manager->errorString();
    if (!std::isfinite(request.speed) || request.speed <= 0.0)
        return "Invalid export speed";
    if (request.fps < 1)
        return "Invalid export frame rate";
    return exportOutputProblem(request.outputPath, manager->recordDir());
}

bool KelExportPipeline::Private::exportFrames(const QString &path)
{
    manager->pause();
    const int savedFrame = manager->currentFrame();
    if (!showFrame(savedFrame)) // so that the way back takes no time: the manager keeps what is shown
        return false;
    const int lostBefore = manager->lostPictures();
    const auto restore = qScopeGuard([&] {
        if (!manager)
            return;
        if (!watch.wasCancelled())
            manager->setExporting(false);
        manager->endExport(savedFrame);
    });
    if (!encodeRange(path) || watch.isCancelled() || !checkWritten(path))
        return false;
    if (const int lost = manager ? manager->lostPictures() - lostBefore : 0; lost > 0)
        warn(QString("The video could not be read at %1 frames, which show the picture before them").arg(lost));
    return true;
}

bool KelExportPipeline::Private::encodeRange(const QString &path)
{
    const QSize picture = manager->pictureSize();
    if (picture.isEmpty())
        return fail("Invalid playback area size");
    const QSize size = request.size.isEmpty() ? picture : request.size;
    const ExportFrameMap map = frameMap();
    if (map.outputFrames() > INT_MAX)
        return fail("Too many frames to export");
    ExportCanvas canvas(picture, size);
    if (!canvas.isValid())
        return fail("Not enough memory for the picture");
    ExportEncoder encoder(
        seams.createEncoder(request.format, size, path, request.fps, request.quality, loopsText(request.loops)),
        directory, watch);
    if (!encoder.isValid())
        return fail("Failed to create encoder", encoder.errorString());
    manager->setExporting(true);
    manager->beginExport(request.speed, map.isRange() ? map.firstFrame() : -1, map.lastFrame());
    if (encodeFrames(encoder, map, canvas) && closeEncoder(encoder, map.outputFrames()))
        return true;
    keepFirstPart(encoder, path);
    return false;
}

/// A picture that stays is neither painted nor handed over again.
bool KelExportPipeline::Private::encodeFrames(ExportEncoder &encoder, const ExportFrameMap &map, ExportCanvas &canvas)
{
    const qint64 frames = map.outputFrames();
    qint64 given = 0; // frames whose picture the encoder has
    const auto isGiven = [&](qint64 upTo, bool isTaken) {
        given = upTo;
        return isTaken || fail(QString("Failed to encode frame %1").arg(upTo - 1), encoder.errorString());
    };
    watch.begin(Stage::Frames, frames);
    for (qint64 i = 0; i < frames; ++i) {
        if (watch.isCancelled())
            return false;
        watch.report(kLoopPercent * i / frames);
        watch.update(i);
        if (!showFrame(map.logicFrame(i)))
            return false;
        if (i + 1 < frames)
            manager->prefetch(map.logicFrame(i + 1)); // while this one is painted and encoded
        if (canvas.isStale(*manager)) {
            if (!isGiven(i + 1, encoder.addFrame(i, canvas.paint(*manager))))
                return false;
        } else if (i + 1 - given >= kRepeatedAtOnce && !isGiven(i + 1, encoder.repeatLastFrameUntil(i + 1))) {
            return false;
        }
    }
    return isGiven(frames, encoder.repeatLastFrameUntil(frames));
}

/// Decodes in the background, so that the user may give up meanwhile.
bool KelExportPipeline::Private::showFrame(int frame)
{
    if (manager)
        manager->prefetch(frame);
    if (!watch.wait([this](auto limit) { return !manager || manager->waitForPrefetch(limit); }))
        return false;
    if (!manager)
        return fail("The recording was closed during the export");
    manager->setFrameSilently(frame);
    return true;
}

bool KelExportPipeline::Private::closeEncoder(ExportEncoder &encoder, qint64 frames)
{
    const int lastPercent = isMp4() ? kVideoPercent : kMixedPercent;
    const qint64 begun = encoder.framesWritten();
    const qint64 rest = std::max<qint64>(frames - begun, 1);
    watch.report(kLoopPercent);
    watch.begin(Stage::Finishing, rest);
    const bool isComplete = encoder.close([&] {
        const qint64 written = std::clamp<qint64>(encoder.framesWritten() - begun, 0, rest);
        watch.report(kLoopPercent + (lastPercent - kLoopPercent) * written / rest);
        watch.update(written);
    });
    return isComplete || fail("Failed to finish the output file", encoder.errorString());
}

/// What an encoder of animations has written plays; hours of work need not be lost with the end.
void KelExportPipeline::Private::keepFirstPart(ExportEncoder &encoder, const QString &path)
{
    if (watch.wasCancelled() || isMp4() || encoder.isValid())
        return;
    const qint64 frames = encoder.salvage();
    const QFileInfo output(request.outputPath);
    const QString kept = QString("%1/%2.incomplete.%3").arg(output.path(), output.completeBaseName(), output.suffix());
    if (frames > 0 && moveOverFile(path, kept, [](qint64) { return true; }).isEmpty())
        errorString += QString("; the first %1 frames are in %2").arg(frames).arg(kept);
}

bool KelExportPipeline::Private::checkWritten(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists()) {
        qCWarning(logExport) << "Output file does not exist:" << path;
        errorString = "Output file does not exist: " + path;
        return false;
    }
    if (file.size() == 0) {
        qCWarning(logExport) << "Output file is empty:" << path;
        errorString = "Output file is empty: " + path;
        return false;
    }
    return true;
}

/// A video without its sound is better than none.
bool KelExportPipeline::Private::mixAudio(KelExportSound &sound, const QString &video)
{
    if (sound.isEmpty())
        return placeFile(video);
    if (canMixInto(request.outputPath)) {
        if (waitForMix(sound, video, request.outputPath))
            return true;
    } else if (const QString mixed = directory->filePath("kel_temp_export_mixed.mp4");
               waitForMix(sound, video, mixed)) {
        return placeFile(mixed);
    }
    if (watch.isCancelled())
        return false;
    warn("The sound could not be added: " + sound.errorString());
    return placeFile(video);
}

/// On a thread of its own, so that the user may give up.
bool KelExportPipeline::Private::waitForMix(KelExportSound &sound, const QString &video, const QString &output)
{
    constexpr int units = 1000;
    std::future<bool> mixed = std::async(std::launch::async, [&] { return sound.addTo(video, output); });
    const auto stop = qScopeGuard([&] { sound.cancel(); }); // for a monitor that throws
    watch.begin(Stage::Sound, units);
    const auto isMixed = [&](auto limit) {
        watch.report(kVideoPercent + qint64((kMixedPercent - kVideoPercent) * sound.share()));
        watch.update(qint64(units * sound.share()));
        return mixed.wait_for(limit) == std::future_status::ready;
    };
    if (!watch.wait(isMixed))
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

ExportFrameMap KelExportPipeline::Private::frameMap() const
{
    return ExportFrameMap(
        {manager->totalFrames(), manager->fps(), manager->durationMs()},
        {request.fps, request.speed, request.trimStartMs, request.trimEndMs, request.trimsLongRecordings});
}

/// The picture begins with a whole frame, a little before the range; so does the sound. What a frame shows happened
/// since the one before, on average half a frame ago: begun that much earlier, the sound is as often a little late as
/// early.
KelExportSound::Range KelExportPipeline::Private::soundRange() const
{
    KelExportSound::Range range;
    range.speed = request.speed;
    if (request.trimStartMs >= 0 && request.trimEndMs >= 0) {
        const double frameMs = double(manager->durationMs()) / manager->totalFrames();
        range.startMs = std::max(0.0, (frameMap().firstFrame() - 0.5) * frameMs);
        range.endMs = range.startMs + request.trimEndMs - request.trimStartMs;
    }
    return range;
}

/// On a thread of its own: the output may be on another disk, and slow.
bool KelExportPipeline::Private::placeFile(const QString &path)
{
    if (watch.isCancelled())
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
    watch.begin(Stage::Placing, size);
    const auto isPlaced = [&](auto limit) {
        watch.update(copied);
        return placed.wait_for(limit) == std::future_status::ready;
    };
    isStopped = !watch.wait(isPlaced);
    const QString problem = placed.get();
    if (!problem.isEmpty())
        return fail(isMp4() ? "Failed to copy video file to output path" : "Failed to put the file in its place",
                    problem);
    return true;
}

KelExportPipeline::KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor)
    : KelExportPipeline(request, monitor, KelExportSeams::real())
{
}

KelExportPipeline::KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor,
                                     const KelExportSeams &seams)
    : d(std::make_unique<Private>(request, monitor, seams))
{
}

KelExportPipeline::~KelExportPipeline() = default;

bool KelExportPipeline::run()
{
    try {
        const bool isComplete = d->runExport();
        if (isComplete)
            d->watch.report(100);
        if (isComplete || d->watch.wasCancelled())
            d->failure = Failure::None;
        return isComplete;
    } catch (const std::exception &problem) {
        d->failure = Failure::Exception;
        return d->fail(QString("An error occurred during export: %1").arg(problem.what()));
    } catch (...) {
        d->failure = Failure::Exception;
        return d->fail("An unknown error occurred during export");
    }
}

QString KelExportPipeline::errorString() const
{
    return d->errorString;
}

QString KelExportPipeline::warningString() const
{
    return d->warnings.join("; ");
}

KelExportPipeline::Failure KelExportPipeline::failure() const
{
    return d->failure;
}
