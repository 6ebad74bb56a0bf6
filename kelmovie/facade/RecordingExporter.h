#pragma once

#include <QString>

class KelPlaybackTrackManager;
struct KelExportRequest;

namespace kel
{

/// Exports a loaded recording at its playback speed: in a modal dialog where the program has a QApplication, without
/// any user interface otherwise. GUI thread.
class RecordingExporter
{
public:
    enum class Result { Complete, Cancelled, Failed };

    explicit RecordingExporter(KelPlaybackTrackManager &recording)
        : m_recording(recording)
    {
    }

    /// The whole recording at 25 frames per second.
    Result exportAll(const QString &path, int format);

    /// From `startMs` to `endMs` of recording time; the whole recording unless both are 0 or more.
    Result exportRange(const QString &path, int format, int startMs, int endMs, int fps);

private:
    Result run(KelExportRequest request);

    KelPlaybackTrackManager &m_recording;
};

} // namespace kel
