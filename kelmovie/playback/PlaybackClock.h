#pragma once

#include <QtGlobal>

namespace kel
{

/// Wall-clock time to logic frames and back, at a frame rate and a playback speed.
struct PlaybackClock {
    int fps = 25;
    double speed = 1.0;
    qint64 startMs = 0; ///< when frame 0 was, or would have been, shown

    /// Sets the clock so that `frame` is due at `nowMs`.
    void restart(qint64 nowMs, int frame);
    /// The frame that is due, bounded to the recording.
    int frameAt(qint64 nowMs, int totalFrames) const;
    /// The same with what of the frame has passed, and unbounded.
    double exactFrameAt(qint64 nowMs) const;
    /// The last frame has been shown for its whole time.
    bool isOver(qint64 nowMs, int totalFrames) const;
};

} // namespace kel
