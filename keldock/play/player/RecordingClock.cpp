#include "play/player/RecordingClock.h"

#include <algorithm>
#include <limits>

RecordingClock::RecordingClock(int totalFrames, int fps, qint64 durationMs)
    : m_lastFrame(std::max(totalFrames - 1, 0))
{
    if (durationMs < 1)
        durationMs = qint64(totalFrames) * std::max(1000 / fps, 1);
    m_durationMs = int(std::min<qint64>(durationMs, std::numeric_limits<int>::max()));
}

int RecordingClock::frameAt(int ms) const
{
    return int(qint64(std::clamp(ms, 0, m_durationMs)) * m_lastFrame / m_durationMs);
}

int RecordingClock::msOf(int frame) const
{
    if (m_lastFrame == 0)
        return 0;
    // Rounded up, because frameAt() rounds down: it must return the same frame.
    return int((qint64(std::clamp(frame, 0, m_lastFrame)) * m_durationMs + m_lastFrame - 1) / m_lastFrame);
}
