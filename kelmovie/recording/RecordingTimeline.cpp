#include "recording/RecordingTimeline.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kel
{

namespace
{

constexpr double kNegligibleMs = 20;

} // namespace

int RecordingTimeline::tickMs(int fps)
{
    return std::max(1000 / fps, 1);
}

RecordingTimeline::RecordingTimeline(int totalFrames, int fps, qint64 durationMs)
    : m_totalFrames(totalFrames)
    , m_fps(fps)
    , m_durationMs(durationMs < 1 ? qint64(totalFrames) * tickMs(fps) : durationMs)
    , m_isMeasured(durationMs >= 1)
{
}

RecordingTimeline::RecordingTimeline(const std::vector<int> &times, int fps, qint64 durationMs)
    : m_totalFrames(int(times.size()))
    , m_fps(fps)
    , m_durationMs(std::max<qint64>({durationMs, times.back(), 1}))
    , m_isMeasured(true)
    , m_appearances(times.size())
{
    // What a frame has captured had changed since the one before, on average half-way between the two. So had a pointer
    // or a window that moves: in the middle of its time, a frame shows where it was.
    for (std::size_t i = 1; i < times.size(); ++i)
        m_appearances[i] = (double(times[i - 1]) + times[i]) / 2;
}

int RecordingTimeline::frameAt(double ms) const
{
    if (hasTimes()) {
        const auto after = std::upper_bound(m_appearances.begin() + 1, m_appearances.end(), ms);
        return int(after - m_appearances.begin()) - 1;
    }
    if (m_durationMs < 1)
        return 0;
    const int frame = int(std::clamp(ms / double(m_durationMs) * m_totalFrames, 0.0, m_totalFrames - 1.0));
    const bool isRoundedDown = frame + 1 < m_totalFrames && msOf(frame + 1) <= ms;
    return isRoundedDown ? frame + 1 : frame;
}

double RecordingTimeline::msOf(int frame) const
{
    if (frame >= m_totalFrames)
        return double(m_durationMs);
    if (hasTimes())
        return m_appearances[std::size_t(std::max(frame, 0))];
    return double(std::max(frame, 0)) / m_totalFrames * double(m_durationMs);
}

RecordingTimeline::Range RecordingTimeline::whole() const
{
    return {0, m_totalFrames - 1, 0, double(m_durationMs), 0};
}

int RecordingTimeline::frameAtPosition(qint64 ms) const
{
    return frameAtPosition(ms, false);
}

/// Without times, the slider ends at the last frame, where recording time ends behind it.
int RecordingTimeline::frameAtPosition(qint64 ms, bool is32Bit) const
{
    if (hasTimes())
        return frameAt(double(ms));
    if (m_durationMs < 1)
        return 0;
    const int last = m_totalFrames - 1;
    const qint64 product = is32Bit ? qint32(quint32(ms * last)) : std::clamp<qint64>(ms, 0, m_durationMs) * last;
    return int(std::clamp<qint64>(product / m_durationMs, 0, last));
}

qint64 RecordingTimeline::positionOf(int frame) const
{
    const qint64 last = m_totalFrames - 1;
    const qint64 inside = std::clamp<qint64>(frame, 0, last);
    if (hasTimes())
        return qint64(std::ceil(m_appearances[std::size_t(inside)]));
    // Rounded up, because frameAtPosition() rounds down.
    return last == 0 ? 0 : (inside * m_durationMs + last - 1) / last;
}

int RecordingTimeline::framesIn(qint64 ms) const
{
    return m_durationMs < 1 ? 0 : qRound(double(ms) * (m_totalFrames - 1) / double(m_durationMs));
}

RecordingTimeline::Range RecordingTimeline::rangeOf(qint64 startMs, qint64 endMs, bool is32Bit) const
{
    const int first = frameAtPosition(startMs, is32Bit);
    Range range{first, frameAtPosition(endMs, is32Bit), double(startMs), double(endMs), double(startMs)};
    // Spread evenly, a frame may begin a little before the range does, and it shows what has changed since the frame
    // before, on average half a frame ago: sound that starts half a frame earlier is on average in time.
    if (!hasTimes())
        range.soundStartMs = std::max(0.0, (first - 0.5) * (double(m_durationMs) / m_totalFrames));
    return range;
}

int RecordingTimeline::frameAfter(qint64 elapsedMs, double speed) const
{
    if (hasTimes())
        return frameAt(double(elapsedMs) * speed);
    return int(std::clamp(double(m_fps * elapsedMs) * speed / 1000.0, 0.0, m_totalFrames - 1.0));
}

double RecordingTimeline::msAfter(qint64 elapsedMs, double speed) const
{
    if (hasTimes())
        return double(elapsedMs) * speed;
    // The recording clock may have ticked at another rate than the nominal one, while the sound was recorded in real
    // time.
    return double(m_fps * elapsedMs) * speed / 1000.0 / m_totalFrames * double(m_durationMs);
}

qint64 RecordingTimeline::elapsedAt(int frame, double speed) const
{
    return hasTimes() ? qint64(std::ceil(msOf(frame) / speed)) : qint64(double(frame) / m_fps * 1000.0 / speed);
}

bool RecordingTimeline::isOver(qint64 elapsedMs, double speed) const
{
    if (hasTimes())
        return double(elapsedMs) * speed >= double(m_durationMs);
    return double(elapsedMs) >= m_totalFrames * 1000.0 / (m_fps * speed);
}

double RecordingTimeline::playbackRate() const
{
    const double nominalMs = m_totalFrames * 1000.0 / m_fps;
    const auto durationMs = double(m_durationMs);
    // Small differences are ignored, to avoid resampling.
    const bool isNominal = hasTimes() || !m_isMeasured || std::abs(durationMs - nominalMs) <= kNegligibleMs;
    return isNominal ? 1.0 : durationMs / nominalMs;
}

} // namespace kel
