#pragma once

#include "recording/RecordingTimeline.h"

#include <QtGlobal>

namespace kel
{

/// Says what of a recording is due at a wall-clock time, at a playback speed. Picture and sound both follow it.
class PlaybackClock
{
public:
    /// `timeline` must outlive this.
    explicit PlaybackClock(const RecordingTimeline &timeline)
        : m_timeline(timeline)
    {
    }

    double speed() const { return m_speed; }
    void setSpeed(double speed) { m_speed = speed; }

    /// Sets the clock so that `frame` is due at `nowMs`.
    void restart(qint64 nowMs, int frame) { m_startMs = nowMs - m_timeline.elapsedAt(frame, m_speed); }
    /// Wall-clock ms since frame 0 was, or would have been, due.
    qint64 elapsedMs(qint64 nowMs) const { return nowMs - m_startMs; }
    /// The frame that is due, clamped to the recording.
    int frameAt(qint64 nowMs) const { return m_timeline.frameAfter(elapsedMs(nowMs), m_speed); }
    /// The recording time that is due, not clamped.
    double recordingMsAt(qint64 nowMs) const { return m_timeline.msAfter(elapsedMs(nowMs), m_speed); }
    /// Whether the last frame has been shown for its whole duration.
    bool isOver(qint64 nowMs) const { return m_timeline.isOver(elapsedMs(nowMs), m_speed); }

private:
    const RecordingTimeline &m_timeline;
    double m_speed = 1.0;
    qint64 m_startMs = 0;
};

} // namespace kel
