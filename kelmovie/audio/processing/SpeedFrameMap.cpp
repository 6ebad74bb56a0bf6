#include "audio/processing/SpeedFrameMap.h"

#include <algorithm>
#include <limits>

namespace kel
{

SpeedFrameMap::SpeedFrameMap(int inFrames, double speed)
    : m_inFrames(inFrames)
    , m_speed(speed)
{
    const double outFrames = inFrames / speed;
    m_outFrames = outFrames <= std::numeric_limits<int>::max() ? int(outFrames) : -1;
}

void SpeedFrameMap::sourceFrames(int first, int count, int *sources) const
{
    const double frames = m_inFrames;
    const double last = frames - 1;
    if (m_speed < 1.0) {
        const double outFrames = m_outFrames;
        for (int i = 0; i < count; ++i)
            sources[i] = int(std::min((first + i) / outFrames * frames, last));
    } else {
        for (int i = 0; i < count; ++i)
            sources[i] = int(std::min((first + i) * m_speed, last));
    }
}

} // namespace kel
