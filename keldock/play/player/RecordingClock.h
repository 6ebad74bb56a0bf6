#pragma once

#include <QtGlobal>

/// Converts between frames and milliseconds on the timeline of a recording, which ends at the last frame. Uses the same
/// mapping as the export of a range, so that the trim range is what is exported.
class RecordingClock
{
public:
    /// A `durationMs` of 0, as in a recording without metadata, is replaced by the duration of all frames at `fps`.
    RecordingClock(int totalFrames, int fps, qint64 durationMs);

    int durationMs() const { return m_durationMs; }
    int lastFrame() const { return m_lastFrame; }
    /// The frame shown at a time. Clamps the time to the timeline.
    int frameAt(int ms) const;
    /// The time at which a frame begins. Clamps the frame to the recording.
    int msOf(int frame) const;

private:
    int m_lastFrame;
    int m_durationMs;
};
