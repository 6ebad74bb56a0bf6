#include "playback/keys/KeyClock.h"

#include "recording/RecordingTimeline.h"

namespace kel
{

KeyClock::KeyClock(int fps)
    : m_fps(fps)
{
}

KeyClock::KeyClock(const RecordingTimeline &timeline)
    : m_timeline(&timeline)
{
}

qint64 KeyClock::msOf(int frame) const
{
    return m_timeline ? qint64(m_timeline->msOf(frame)) : frame * 1000LL / m_fps;
}

int KeyClock::firstFrameAfter(qint64 ms, int first, int end) const
{
    while (first < end) {
        const int middle = first + (end - first) / 2;
        if (msOf(middle) > ms)
            end = middle;
        else
            first = middle + 1;
    }
    return end;
}

} // namespace kel
