#pragma once

#include <QtGlobal>

namespace kel
{

class RecordingTimeline;

/// The time of logic frames, in ms, by which displayed keys expire.
class KeyClock
{
public:
    /// Assumes `fps` frames per second.
    explicit KeyClock(int fps);
    /// Recording time. `timeline` must outlive the clock.
    explicit KeyClock(const RecordingTimeline &timeline);

    qint64 msOf(int frame) const;
    /// The first frame from `first` to `end`, exclusive, that is later than `ms`; `end` if there is none.
    int firstFrameAfter(qint64 ms, int first, int end) const;

private:
    int m_fps = 0;
    const RecordingTimeline *m_timeline = nullptr; // null: assumes m_fps
};

} // namespace kel
