#pragma once

#include "recording/RecordingTimeline.h"

#include <optional>

class KelPlaybackTrackManager;
struct KelExportRequest;

namespace kel
{

/// Converts between output time and recording time for an export: the logic frame of each output frame, and the part of
/// the sound. Playback has PlaybackClock instead.
class ExportFrameMap
{
public:
    struct Output {
        int fps = 25;       ///< at least 1
        double speed = 1.0; ///< above 0
        int trimStartMs = -1;
        int trimEndMs = -1;               ///< the range is used if both values are 0 or more
        bool trimsLongRecordings = false; ///< see KelPlaybackRules
    };

    ExportFrameMap(const RecordingTimeline &timeline, const Output &output);

    static ExportFrameMap forExport(const KelPlaybackTrackManager &manager, const KelExportRequest &request);

    /// Number of output frames, at least 1; up to 1e15 at a very slow speed.
    qint64 outputFrames() const { return m_outputFrames; }
    /// The logic frame that output frame `i` shows, counted from 0: the one that was on the screen in the middle of the
    /// time for which it is shown. Without the times of the frames, they are spread evenly over the output frames.
    int logicFrame(qint64 i) const;
    /// What is exported; nothing for the whole recording.
    const std::optional<RecordingTimeline::Range> &range() const { return m_range; }

private:
    double recordingMsAt(double outputFrame) const { return m_exported.startMs + outputFrame * m_frameMs; }

    const RecordingTimeline m_timeline;
    std::optional<RecordingTimeline::Range> m_range;
    RecordingTimeline::Range m_exported; // *m_range, or the whole recording
    const double m_frameMs;              // recording time per output frame
    qint64 m_outputFrames = 1;
};

} // namespace kel
