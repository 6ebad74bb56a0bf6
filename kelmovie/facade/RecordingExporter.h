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
    enum class Result {
        Complete,
        Cancelled,
        NotStarted, ///< failed before the first frame was encoded
        Failed      ///< failed later
    };

    struct Outcome {
        Result result;
        QString error; ///< in English; empty unless the export failed
    };

    explicit RecordingExporter(KelPlaybackTrackManager &recording)
        : m_recording(recording)
    {
    }

    /// The whole recording at 25 frames per second.
    Outcome exportAll(const QString &path, int format);

    /// From `startMs` to `endMs` of recording time; the whole recording unless both are 0 or more.
    Outcome exportRange(const QString &path, int format, int startMs, int endMs, int fps);

private:
    Outcome run(KelExportRequest request);

    KelPlaybackTrackManager &m_recording;
};

} // namespace kel
