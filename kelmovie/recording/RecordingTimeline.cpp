#include "recording/RecordingTimeline.h"

#include <algorithm>

namespace kel
{

RecordingTimeline::RecordingTimeline(int totalFrames, int fps, qint64 durationMs)
    : m_totalFrames(totalFrames)
    , m_fps(fps)
    // The recording clock ticks at whole milliseconds.
    , m_durationMs(durationMs < 1 ? qint64(totalFrames) * std::max(1000 / fps, 1) : durationMs)
{
}

int RecordingTimeline::frameAt(double ms) const
{
    if (m_durationMs < 1)
        return 0;
    return int(std::clamp(ms / double(m_durationMs) * m_totalFrames, 0.0, m_totalFrames - 1.0));
}

double RecordingTimeline::msOf(int frame) const
{
    return double(m_durationMs) * std::clamp(frame, 0, m_totalFrames) / m_totalFrames;
}

} // namespace kel
