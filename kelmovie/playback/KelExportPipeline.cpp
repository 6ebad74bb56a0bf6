#include "playback/KelExportPipeline.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "avcodec/MixAudioVideoTracks.h"
#include "playback/ExportFrameMap.h"
#include "playback/ExportOutput.h"
#include "playback/KelExportSeams.h"
#include "playback/KelExportSound.h"
#include "playback/KelPlaybackTrackManager.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cmath>
#include <exception>
#include <future>

namespace
{

constexpr int kFormatMp4 = 0;
constexpr int kLoopPercent = 90;
constexpr int kVideoPercent = 95;
constexpr int kMixedPercent = 99;
constexpr std::chrono::milliseconds kPoll(50);
constexpr int kMaxLoops = 65535;

/// As the encoders of animations understand it; empty: endlessly.
QString loopsText(int loops)
{
    return loops > 0 ? QString("loop=%1").arg(std::min(loops, kMaxLoops)) : QString();
}

} // namespace

KelExportMonitor::~KelExportMonitor() = default;

class KelExportPipeline::Private
{
public:
    bool runExport();
    QString requestProblem() const;
    bool exportFrames(const QString &path);
    bool encodeRange(const QString &path);
    bool encodeFrames(KelAVCodecEncoder &encoder, const ExportFrameMap &map, QImage &image);
    bool closeEncoder(KelAVCodecEncoder &encoder, qint64 frames);
    bool checkWritten(const QString &path);
    bool mixAudio(KelExportSound &sound, const QString &video, const QTemporaryDir &temporary);
    bool waitForMix(KelExportSound &sound, const QString &video, const QString &output);
    QString voiceDir() const;
    ExportFrameMap frameMap() const;
    KelExportSound::Range soundRange() const;
    bool placeVideo(const QString &path);
    void report(qint64 percent);
    bool isCancelled();
    bool fail(const QString &text, const QString &detail = QString());

    KelExportRequest request;
    KelExportMonitor *monitor = nullptr;
    KelExportSeams seams;
    QPointer<KelPlaybackTrackManager> manager; // a monitor that handles events may let the user close the recording
    int reportedPercent = -1;
    bool cancelled = false;
    Failure failure = Failure::None;
    QString errorString;
    QString warningString;
};

void KelExportPipeline::Private::report(qint64 percent)
{
    if (percent <= reportedPercent)
        return;
    reportedPercent = int(percent);
    if (monitor)
        monitor->exportProgress(reportedPercent);
}

bool KelExportPipeline::Private::isCancelled()
{
    cancelled = cancelled || (monitor && monitor->isExportCancelled());
    return cancelled;
}

bool KelExportPipeline::Private::fail(const QString &text, const QString &detail)
{
    qWarning().noquote() << text;
    errorString = text;
    if (!detail.isEmpty()) {
        qWarning().noquote() << "[KelExportPipeline]" << detail;
        errorString += ": " + detail;
    }
    return false;
}

bool KelExportPipeline::Private::runExport()
{
    report(0);
    failure = Failure::Video; // until that step is done
    if (isCancelled())
        return false;
    const QString problem = requestProblem();
    if (!problem.isEmpty())
        return fail(problem);
    if (request.format != kFormatMp4) {
        if (!exportFrames(request.outputPath) || isCancelled())
            return false;
        report(100);
        return true;
    }
    // A directory of our own: nobody can have put a link or another file in the place of the video.
    QTemporaryDir temporary(QDir::tempPath() + "/kel_temp_export_XXXXXX");
    if (!temporary.isValid())
        return fail("Cannot create a temporary directory", temporary.errorString());
    const QString video = temporary.filePath("kel_temp_export_video.mp4");
    // Chosen now: the user may close the recording while the video is being finished.
    KelExportSound sound(manager->voiceTrack(), voiceDir(), soundRange(), temporary.path());
    if (!exportFrames(video) || isCancelled())
        return false;
    report(kVideoPercent);
    failure = Failure::Sound;
    if (!mixAudio(sound, video, temporary))
        return false;
    report(100);
    return true;
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
    const auto restore = qScopeGuard([&] {
        if (!manager)
            return;
        if (!cancelled)
            manager->setExporting(false);
        manager->endExport(savedFrame);
    });
    return encodeRange(path) && checkWritten(path);
}

bool KelExportPipeline::Private::encodeRange(const QString &path)
{
    const QSize size = manager->pictureSize();
    if (size.isEmpty())
        return fail("Invalid playback area size");
    const ExportFrameMap map = frameMap();
    if (map.outputFrames() > INT_MAX)
        return fail("Too many frames to export");
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return fail("Not enough memory for the picture");
    image.fill(Qt::black); // in case the video does not cover it
    const auto encoder =
        seams.createEncoder(request.format, size, path, request.fps, request.quality, loopsText(request.loops));
    if (!encoder || !encoder->isValid())
        return fail("Failed to create encoder", encoder ? encoder->errorString() : QString());
    manager->setExporting(true);
    manager->beginExport(request.speed, map.isRange() ? map.firstFrame() : -1, map.lastFrame());
    if (encodeFrames(*encoder, map, image) && closeEncoder(*encoder, map.outputFrames()))
        return true;
    encoder->abort();
    return false;
}

bool KelExportPipeline::Private::encodeFrames(KelAVCodecEncoder &encoder, const ExportFrameMap &map, QImage &image)
{
    const qint64 frames = map.outputFrames();
    for (qint64 i = 0; i < frames; ++i) {
        if (isCancelled())
            return false;
        report(kLoopPercent * i / frames);
        if (!manager)
            return fail("The recording was closed during the export");
        manager->setFrameSilently(map.logicFrame(i));
        QPainter painter(&image);
        manager->paint(&painter);
        painter.end();
        if (!encoder.addFrame(quint64(i), image))
            return fail(QString("Failed to encode frame %1").arg(i), encoder.errorString());
    }
    return true;
}

/// Closes on a thread of its own: some encoders do much of their work then, and the user may still give up.
bool KelExportPipeline::Private::closeEncoder(KelAVCodecEncoder &encoder, qint64 frames)
{
    report(kLoopPercent);
    std::future<bool> closed = std::async(std::launch::async, [&encoder] { return encoder.close(); });
    while (closed.wait_for(kPoll) != std::future_status::ready) {
        const qint64 written = std::min<qint64>(qint64(encoder.framesWritten()), frames);
        report(kLoopPercent + (kVideoPercent - kLoopPercent) * written / frames);
        if (isCancelled())
            encoder.abort();
    }
    const bool isComplete = closed.get();
    if (isCancelled())
        return false;
    return isComplete || fail("Failed to finish the output file", encoder.errorString());
}

bool KelExportPipeline::Private::checkWritten(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists()) {
        qWarning() << "Output file does not exist:" << path;
        errorString = "Output file does not exist: " + path;
        return false;
    }
    if (file.size() == 0) {
        qWarning() << "Output file is empty:" << path;
        errorString = "Output file is empty: " + path;
        return false;
    }
    return true;
}

/// A video without its sound is better than none.
bool KelExportPipeline::Private::mixAudio(KelExportSound &sound, const QString &video, const QTemporaryDir &temporary)
{
    if (sound.isEmpty())
        return placeVideo(video);
    if (canMixInto(request.outputPath)) {
        if (waitForMix(sound, video, request.outputPath))
            return true;
    } else if (const QString mixed = temporary.filePath("kel_temp_export_mixed.mp4"); waitForMix(sound, video, mixed)) {
        return placeVideo(mixed);
    }
    if (isCancelled())
        return false;
    warningString = "The sound could not be added: " + sound.errorString();
    qWarning().noquote() << "[KelExportPipeline]" << warningString;
    return placeVideo(video);
}

/// On a thread of its own, so that the user may give up.
bool KelExportPipeline::Private::waitForMix(KelExportSound &sound, const QString &video, const QString &output)
{
    std::future<bool> mixed = std::async(std::launch::async, [&] { return sound.addTo(video, output); });
    const auto stop = qScopeGuard([&] { sound.cancel(); }); // for a monitor that throws
    while (mixed.wait_for(kPoll) != std::future_status::ready) {
        report(kVideoPercent + qint64((kMixedPercent - kVideoPercent) * sound.share()));
        if (isCancelled())
            sound.cancel();
    }
    return mixed.get();
}

QString KelExportPipeline::Private::voiceDir() const
{
    QString dir = request.trackDataDir;
    if (dir.isEmpty())
        dir = manager->property("trackDataDir").toString();
    if (dir.isEmpty())
        dir = manager->recordDir();
    return dir + "/Voice";
}

ExportFrameMap KelExportPipeline::Private::frameMap() const
{
    return ExportFrameMap({manager->totalFrames(), manager->fps(), manager->durationMs()},
                          {request.fps, request.speed, request.trimStartMs, request.trimEndMs});
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

bool KelExportPipeline::Private::placeVideo(const QString &path)
{
    const qint64 size = QFileInfo(path).size();
    const QString problem = moveOverFile(path, request.outputPath, [&](qint64 copied) {
        report(kVideoPercent + (kMixedPercent - kVideoPercent) * copied / std::max<qint64>(size, copied));
        return !isCancelled();
    });
    if (cancelled)
        return false;
    return problem.isEmpty() || fail("Failed to copy video file to output path", problem);
}

KelExportPipeline::KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor)
    : KelExportPipeline(request, monitor, KelExportSeams::real())
{
}

KelExportPipeline::KelExportPipeline(const KelExportRequest &request, KelExportMonitor *monitor,
                                     const KelExportSeams &seams)
    : d(std::make_unique<Private>())
{
    d->request = request;
    d->monitor = monitor;
    d->seams = seams;
    d->manager = request.playbackManager;
}

KelExportPipeline::~KelExportPipeline() = default;

bool KelExportPipeline::run()
{
    try {
        const bool isComplete = d->runExport();
        if (isComplete || d->cancelled)
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
    return d->warningString;
}

KelExportPipeline::Failure KelExportPipeline::failure() const
{
    return d->failure;
}
