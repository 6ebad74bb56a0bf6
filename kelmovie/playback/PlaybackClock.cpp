#include "playback/PlaybackClock.h"

#include <algorithm>

namespace kel
{

void PlaybackClock::restart(qint64 nowMs, int frame)
{
    startMs = nowMs - qint64(double(frame) / fps * 1000.0 / speed);
}

int PlaybackClock::frameAt(qint64 nowMs, int totalFrames) const
{
    return int(std::clamp(exactFrameAt(nowMs), 0.0, double(totalFrames - 1)));
}

double PlaybackClock::exactFrameAt(qint64 nowMs) const
{
    return double(fps * (nowMs - startMs)) * speed / 1000.0;
}

bool PlaybackClock::isOver(qint64 nowMs, int totalFrames) const
{
    return double(nowMs - startMs) >= totalFrames * 1000.0 / (fps * speed);
}

} // namespace kel
