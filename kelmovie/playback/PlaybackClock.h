#pragma once

#include <QtGlobal>

namespace kel
{

/// Converts wall-clock time to logic frames and back, at a frame rate and a playback speed. Export has ExportFrameMap
/// instead.
struct PlaybackClock {
    int fps = 25;
    double speed = 1.0;
    qint64 startMs = 0; ///< wall-clock time at which frame 0 was, or would have been, due

    /// Sets the clock so that `frame` is due at `nowMs`.
    void restart(qint64 nowMs, int frame);
    /// The frame that is due, clamped to the recording.
    int frameAt(qint64 nowMs, int totalFrames) const;
    /// The same with its fractional part, not clamped.
    double exactFrameAt(qint64 nowMs) const;
    /// Whether the last frame has been shown for its whole duration.
    bool isOver(qint64 nowMs, int totalFrames) const;
};

} // namespace kel
