#include "facade/RecordingExporter.h"

#include "config/KelMovieConfig.h"
#include "export/KelExportPipeline.h"
#include "playback/KelPlaybackTrackManager.h"
#include "ui/export/KelPlaybackExportDialog.h"

#include <QApplication>
#include <QVariant>

namespace kel
{

namespace
{

RecordingExporter::Outcome outcomeOf(const KelExportPipeline &pipeline, bool isComplete)
{
    using Result = RecordingExporter::Result;
    if (isComplete)
        return {Result::Complete, QString()};
    switch (pipeline.failure()) {
    case KelExportPipeline::Failure::None:
        return {Result::Cancelled, QString()};
    case KelExportPipeline::Failure::Start:
        return {Result::NotStarted, pipeline.errorString()};
    default:
        return {Result::Failed, pipeline.errorString()};
    }
}

} // namespace

RecordingExporter::Outcome RecordingExporter::exportAll(const QString &path, int format)
{
    KelExportRequest request;
    request.format = format;
    request.fps = 25;
    request.quality = KelMovieExportQuality();
    request.outputPath = path;
    return run(request);
}

RecordingExporter::Outcome RecordingExporter::exportRange(const QString &path, int format, int startMs, int endMs,
                                                          int fps)
{
    KelExportRequest request;
    request.format = format;
    request.fps = fps;
    request.quality = KelMovieExportQuality(100);
    request.outputPath = path;
    request.trimStartMs = startMs;
    request.trimEndMs = endMs;
    request.trackDataDir = m_recording.property("trackDataDir").toString();
    return run(request);
}

RecordingExporter::Outcome RecordingExporter::run(KelExportRequest request)
{
    request.playbackManager = &m_recording;
    request.speed = m_recording.speed();
    request.loops = gKelMovieConfig.encodeGifPlayLoop;
    request.autoExitAfterEncode = gKelMovieConfig.encodeExitRecordAfterEncode;
    request.onExitRecord = KelMovieSaveExitRecordAfterEncode;
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        KelPlaybackExportDialog dialog(request, QApplication::activeWindow());
        const bool isComplete = dialog.exec() == QDialog::Accepted;
        return outcomeOf(dialog.pipeline(), isComplete);
    }
    KelExportPipeline pipeline(request);
    const bool isComplete = pipeline.run();
    return outcomeOf(pipeline, isComplete);
}

} // namespace kel
