#pragma once

#include <KelMovie/KelExportPipeline.h>

#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class KelPlaybackTrackManager;
struct KelExportDependencies;

namespace kel
{

class ExportCanvas;
class ExportDirectory;
class ExportEncoder;
class ExportFrameMap;
class ExportLog;
class ExportProgress;
class PlaybackEngine;

/// The frames of an export: composes each in the playback manager and encodes it into a file without sound. Frames are
/// decoded ahead on another thread, so that the GUI thread only composes them.
class FrameExport
{
public:
    /// `request`, `progress` and `log` must outlive this; `directory` holds the file that is written.
    FrameExport(const KelExportRequest &request, std::shared_ptr<ExportDirectory> directory, ExportProgress &progress,
                ExportLog &log);

    /// Writes the file `path`; calls `started` before the first frame. Pauses the playback manager, and returns it to
    /// its frame. False on failure and when cancelled.
    bool run(const QString &path, const KelExportDependencies &dependencies, const std::function<void()> &started);

private:
    PlaybackEngine &playback() const;
    bool encodeRange(const QString &path, const KelExportDependencies &dependencies,
                     const std::function<void()> &started);
    bool encodeFrames(ExportEncoder &encoder, const ExportFrameMap &map, ExportCanvas &canvas);
    bool showFrame(int frame);
    bool closeEncoder(ExportEncoder &encoder, qint64 frames);
    void keepFirstPart(ExportEncoder &encoder, const QString &path);
    bool checkWritten(const QString &path);

    const KelExportRequest &m_request;
    const std::shared_ptr<ExportDirectory> m_directory;
    ExportProgress &m_progress;
    ExportLog &m_log;
    QPointer<KelPlaybackTrackManager> m_manager; // a monitor that processes events may close the recording
};

} // namespace kel
