#include "export/FrameExport.h"

#include "avcodec/KelAVCodecEncoder.h"
#include "export/ExportCanvas.h"
#include "export/ExportEncoder.h"
#include "export/ExportFrameMap.h"
#include "export/ExportLog.h"
#include "export/ExportOutput.h"
#include "export/ExportProgress.h"
#include "export/KelExportDependencies.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QFileInfo>
#include <QScopeGuard>

#include <algorithm>
#include <climits>
#include <utility>

namespace kel
{

namespace
{

using Stage = KelExportMonitor::Status::Stage;

constexpr int kMaxLoops = 65535;

/// How many times an encoder repeats a frame per call. Limited, so that its queue never holds much work.
constexpr int kMaxRepeats = 64;

/// The option that the animation encoders take; empty: endlessly.
QString loopsOption(int loops)
{
    return loops > 0 ? QStringLiteral("loop=%1").arg(std::min(loops, kMaxLoops)) : QString();
}

} // namespace

FrameExport::FrameExport(const KelExportRequest &request, std::shared_ptr<ExportDirectory> directory,
                         ExportProgress &progress, ExportLog &log)
    : m_request(request)
    , m_directory(std::move(directory))
    , m_progress(progress)
    , m_log(log)
    , m_manager(request.playbackManager)
{
}

PlaybackEngine &FrameExport::playback() const
{
    return PlaybackInternals::engine(*m_manager);
}

bool FrameExport::run(const QString &path, const KelExportDependencies &dependencies,
                      const std::function<void()> &started)
{
    playback().pause();
    const int savedFrame = playback().currentFrame();
    if (!showFrame(savedFrame)) // beginExport() keeps this frame, so that returning to it takes no time
        return false;
    const int failedBefore = playback().failedFrames();
    const auto restore = qScopeGuard([&] {
        if (!m_manager)
            return;
        if (!m_progress.wasCancelled())
            playback().setExporting(false);
        playback().endExport(savedFrame);
    });
    if (!encodeRange(path, dependencies, started) || m_progress.isCancelled() || !checkWritten(path))
        return false;
    if (const int failed = m_manager ? playback().failedFrames() - failedBefore : 0; failed > 0)
        m_log.warn(QStringLiteral("%1 frames of the video could not be decoded and repeat the one before").arg(failed));
    return true;
}

bool FrameExport::encodeRange(const QString &path, const KelExportDependencies &dependencies,
                              const std::function<void()> &started)
{
    const QSize frameSize = m_manager->frameSize();
    if (frameSize.isEmpty())
        return m_log.fail(QStringLiteral("Invalid playback area size"));
    const QSize size = ExportCanvas::outputSize(*m_manager, m_request);
    const ExportFrameMap map = ExportFrameMap::forExport(*m_manager, m_request);
    if (map.outputFrames() > INT_MAX)
        return m_log.fail(QStringLiteral("Too many frames to export"));
    ExportCanvas canvas(frameSize, size);
    if (!canvas.isValid())
        return m_log.fail(QStringLiteral("Not enough memory for a frame"));
    ExportEncoder encoder(dependencies.createEncoder(m_request.format, size, path, m_request.fps, m_request.quality,
                                                     loopsOption(m_request.loops)),
                          m_directory, m_progress);
    if (!encoder.isValid())
        return m_log.fail(QStringLiteral("Failed to create encoder"), encoder.errorString());
    started();
    playback().setExporting(true);
    playback().beginExport(m_request.speed, map.range());
    if (encodeFrames(encoder, map, canvas) && closeEncoder(encoder, map.outputFrames()))
        return true;
    keepFirstPart(encoder, path);
    return false;
}

/// Frames that are equal to the one before are neither painted nor passed to the encoder again.
bool FrameExport::encodeFrames(ExportEncoder &encoder, const ExportFrameMap &map, ExportCanvas &canvas)
{
    const qint64 frames = map.outputFrames();
    qint64 encoded = 0; // frames that the encoder has
    const auto check = [&](qint64 end, bool isEncoded) {
        encoded = end;
        return isEncoded || m_log.fail(QStringLiteral("Failed to encode frame %1").arg(end - 1), encoder.errorString());
    };
    m_progress.begin(Stage::Frames, frames);
    for (qint64 i = 0; i < frames; ++i) {
        if (m_progress.isCancelled())
            return false;
        m_progress.report(ExportProgress::kFramesPercent * i / frames);
        m_progress.update(i);
        if (!showFrame(map.logicFrame(i)))
            return false;
        if (i + 1 < frames)
            playback().prefetch(map.logicFrame(i + 1)); // while this one is painted and encoded
        if (canvas.isStale(*m_manager)) {
            if (!check(i + 1, encoder.addFrame(i, canvas.paint(*m_manager))))
                return false;
        } else if (i + 1 - encoded >= kMaxRepeats && !check(i + 1, encoder.repeatLastFrameUntil(i + 1))) {
            return false;
        }
    }
    return check(frames, encoder.repeatLastFrameUntil(frames));
}

/// Decodes in the background, so that the user can cancel meanwhile.
bool FrameExport::showFrame(int frame)
{
    if (m_manager)
        playback().prefetch(frame);
    if (!m_progress.wait([this](auto limit) { return !m_manager || playback().waitForPrefetch(limit); }))
        return false;
    if (!m_manager)
        return m_log.fail(QStringLiteral("The recording was closed during the export"));
    playback().setFrameSilently(frame);
    return true;
}

bool FrameExport::closeEncoder(ExportEncoder &encoder, qint64 frames)
{
    constexpr int start = ExportProgress::kFramesPercent;
    const int end =
        m_request.format == KelExportRequest::Mp4 ? ExportProgress::kVideoPercent : ExportProgress::kSoundPercent;
    const qint64 writtenBefore = encoder.framesWritten();
    const qint64 total = std::max<qint64>(frames - writtenBefore, 1);
    m_progress.report(start);
    m_progress.begin(Stage::Finishing, total);
    const bool isComplete = encoder.close([&] {
        const qint64 written = std::clamp<qint64>(encoder.framesWritten() - writtenBefore, 0, total);
        m_progress.report(start + (end - start) * written / total);
        m_progress.update(written);
    });
    return isComplete || m_log.fail(QStringLiteral("Failed to finish the output file"), encoder.errorString());
}

/// After a failure, the frames that an animation encoder has written can be played: keeping them may save hours of
/// encoding.
void FrameExport::keepFirstPart(ExportEncoder &encoder, const QString &path)
{
    if (m_progress.wasCancelled() || m_request.format == KelExportRequest::Mp4 || encoder.isValid())
        return;
    const qint64 frames = encoder.salvage();
    const QFileInfo output(m_request.outputPath);
    const QString kept =
        QStringLiteral("%1/%2.incomplete.%3").arg(output.path(), output.completeBaseName(), output.suffix());
    if (frames > 0 && moveOverFile(path, kept, [](qint64) { return true; }).isEmpty())
        m_log.addDetail(QStringLiteral("; the first %1 frames are in %2").arg(frames).arg(kept));
}

bool FrameExport::checkWritten(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists())
        return m_log.fail(QLatin1String("Output file does not exist: ") + path);
    if (file.size() == 0)
        return m_log.fail(QLatin1String("Output file is empty: ") + path);
    return true;
}

} // namespace kel
