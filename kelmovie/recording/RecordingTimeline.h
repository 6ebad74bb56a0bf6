#pragma once

#include <QtGlobal>

#include <vector>

namespace kel
{

/// Maps the logic frames of a recording to recording time, which is measured in ms without pauses, and back. The only
/// place that does. An immutable value; any thread.
///
/// Frames are shown at the times at which they were recorded. Recordings that do not contain these times have their
/// frames spread evenly over the duration; slider and playback then use traditional rules of their own, which differ
/// slightly, so that such a recording looks as it always did.
class RecordingTimeline
{
public:
    /// A part of the recording.
    struct Range {
        int firstFrame = 0; ///< the frame at its start
        int lastFrame = 0;  ///< the frame at its end; before `firstFrame` if the range ends before it starts
        double startMs = 0; ///< recording time
        double endMs = 0;
        double soundStartMs = 0; ///< where the sound begins that goes with the first frame
    };

    /// One frame without duration.
    RecordingTimeline() = default;
    /// Frames spread evenly over the duration. `totalFrames` and `fps` are at least 1. If `durationMs` is below 1, the
    /// duration follows from the frames.
    RecordingTimeline(int totalFrames, int fps, qint64 durationMs);
    /// Frames recorded at `times`, which are not empty, not negative, and never fall. The duration is at least the last
    /// of them.
    RecordingTimeline(const std::vector<int> &times, int fps, qint64 durationMs);

    /// The interval of the recording clock, which ticks at whole ms.
    static int tickMs(int fps);

    /// At least 1.
    int totalFrames() const { return m_totalFrames; }
    /// Nominal logic frames per second.
    int fps() const { return m_fps; }
    /// Above 0 unless default-constructed.
    qint64 durationMs() const { return m_durationMs; }
    /// Whether the duration was measured. If not, it was derived from the number of frames.
    bool isMeasured() const { return m_isMeasured; }

    /// Whether it is known when each frame was recorded.
    bool hasTimes() const { return !m_appearances.empty(); }

    /// The frame that is on the screen at `ms`, clamped to the recording.
    int frameAt(double ms) const;
    /// The time at which `frame` appears: frameAt() returns it from there on. `frame` is clamped to 0 to totalFrames(),
    /// and totalFrames() is the end.
    double msOf(int frame) const;
    Range whole() const;

    // The slider and the trim range.

    /// The frame at `ms` of the slider, clamped to the recording.
    int frameAtPosition(qint64 ms) const;
    /// The first whole ms at which frameAtPosition() returns `frame`; `frame` is clamped to the recording.
    qint64 positionOf(int frame) const;
    /// How many frames `ms` have on average, rounded.
    int framesIn(qint64 ms) const;
    /// `is32Bit`: as KelPlaybackRules describes for long recordings.
    Range rangeOf(qint64 startMs, qint64 endMs, bool is32Bit = false) const;

    // Playback: what is due `elapsedMs` of wall-clock time after the first frame was, at `speed`.

    int frameAfter(qint64 elapsedMs, double speed) const;
    /// The recording time that is due, not clamped.
    double msAfter(qint64 elapsedMs, double speed) const;
    /// The elapsed time at which `frame` is due.
    qint64 elapsedAt(int frame, double speed) const;
    /// Whether the last frame has been shown for its whole duration.
    bool isOver(qint64 elapsedMs, double speed) const;
    /// Ms of recording time per ms of playback at speed 1.
    double playbackRate() const;

private:
    int frameAtPosition(qint64 ms, bool is32Bit) const;
    int m_totalFrames = 1;
    int m_fps = 25;
    qint64 m_durationMs = 0;
    bool m_isMeasured = false;
    std::vector<double> m_appearances; // msOf() every frame; empty if only the duration is known
};

} // namespace kel
