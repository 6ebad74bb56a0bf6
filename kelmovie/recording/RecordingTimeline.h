#pragma once

#include <QtGlobal>

namespace kel
{

/// Maps the logic frames of a recording to recording time, which is measured in ms without pauses, and back. The only
/// place that does. An immutable value; any thread.
class RecordingTimeline
{
public:
    /// One frame without duration.
    RecordingTimeline() = default;
    /// Frames spread evenly over the duration. `totalFrames` and `fps` are at least 1. If `durationMs` is below 1, the
    /// duration follows from the frames.
    RecordingTimeline(int totalFrames, int fps, qint64 durationMs);

    /// At least 1.
    int totalFrames() const { return m_totalFrames; }
    /// Nominal logic frames per second.
    int fps() const { return m_fps; }
    /// Above 0 unless default-constructed.
    qint64 durationMs() const { return m_durationMs; }

    /// The frame that is on the screen at `ms`, clamped to the recording.
    int frameAt(double ms) const;
    /// The time at which `frame` appears; `frame` is clamped to 0 to totalFrames(), and totalFrames() is the end.
    double msOf(int frame) const;

private:
    int m_totalFrames = 1;
    int m_fps = 25;
    qint64 m_durationMs = 0;
};

} // namespace kel
