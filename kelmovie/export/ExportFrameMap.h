#pragma once

#include <QtGlobal>

class KelPlaybackTrackManager;
struct KelExportRequest;

namespace kel
{

/// Converts ms to frames for an export: maps its output frames to logic frames. The logic frames of the range are
/// spread evenly over the output frames; their number follows from the duration of the range, the playback speed and
/// the output frame rate. Playback has PlaybackClock instead.
class ExportFrameMap
{
public:
    struct Recording {
        int totalFrames = 1; ///< at least 1
        int fps = 25;        ///< logic frames per second, at least 1
        qint64 durationMs = 0;
    };
    struct Output {
        int fps = 25;       ///< at least 1
        double speed = 1.0; ///< above 0
        int trimStartMs = -1;
        int trimEndMs = -1;               ///< the range is used if both values are 0 or more
        bool trimsLongRecordings = false; ///< see KelPlaybackRules
    };

    ExportFrameMap(const Recording &recording, const Output &output);

    static ExportFrameMap forExport(const KelPlaybackTrackManager &manager, const KelExportRequest &request);

    /// Number of output frames, at least 1; up to 1e15 at a very slow speed.
    qint64 outputFrames() const { return m_outputFrames; }
    /// The logic frame that output frame `i` shows, counted from 0.
    int logicFrame(qint64 i) const;
    /// Whether only a range of the recording is exported: logic frames firstFrame() to lastFrame().
    bool isRange() const { return m_isRange; }
    int firstFrame() const { return m_startFrame; }
    int lastFrame() const { return m_startFrame + m_frameSpan; }

private:
    bool m_isRange = false;
    int m_startFrame = 0;
    int m_frameSpan = 0;
    qint64 m_outputFrames = 1;
};

} // namespace kel
