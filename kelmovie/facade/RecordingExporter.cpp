#include "facade/RecordingExporter.h"

#include "config/KelMovieConfig.h"
#include "export/KelExportPipeline.h"
#include "logging/Log.h"
#include "playback/KelPlaybackTrackManager.h"
#include "ui/export/KelPlaybackExportDialog.h"

#include <QApplication>
#include <QDebug>
#include <QVariant>

namespace kel
{

RecordingExporter::Result RecordingExporter::exportAll(const QString &path, int format)
{
    KelExportRequest request;
    request.format = format;
    request.fps = 25;
    request.quality = KelMovieExportQuality();
    request.outputPath = path;
    return run(request);
}

RecordingExporter::Result RecordingExporter::exportRange(const QString &path, int format, int startMs, int endMs,
                                                         int fps)
{
    KelExportRequest request;
    request.format = format;
    request.fps = fps;
    request.quality = KelMovieExportQuality(100);
    request.outputPath = path;
    if (startMs >= 0 && endMs >= 0) {
        request.trimStartMs = startMs;
        request.trimEndMs = endMs;
    }
    request.trackDataDir = m_recording.property("trackDataDir").toString();
    return run(request);
}

RecordingExporter::Result RecordingExporter::run(KelExportRequest request)
{
    request.playbackManager = &m_recording;
    request.speed = m_recording.speed();
    request.loops = gKelMovieConfig.encodeGifPlayLoop;
    request.autoExitAfterEncode = gKelMovieConfig.encodeExitRecordAfterEncode;
    request.onExitRecord = KelMovieSaveExitRecordAfterEncode;
    if (qobject_cast<QApplication *>(QCoreApplication::instance())) {
        bool cancelled = false;
        if (KelPlaybackExportDialog::run(request, QApplication::activeWindow(), &cancelled))
            return Result::Complete;
        return cancelled ? Result::Cancelled : Result::Failed;
    }
    KelExportPipeline pipeline(request);
    if (pipeline.run())
        return Result::Complete;
    qCWarning(logExport).noquote() << "[KelMultiTrackRecorder] Export failed:" << pipeline.errorString();
    return Result::Failed;
}

} // namespace kel
