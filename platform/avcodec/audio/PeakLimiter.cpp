#include "avcodec/audio/PeakLimiter.h"

#include <algorithm>
#include <cmath>

namespace av
{

namespace
{

constexpr float kRelease = 0.0001F; // share of the remaining gain recovered per sample: about 200 ms at 48 kHz
constexpr float kAlmostOne = 0.9999F;

} // namespace

/// The gain is a moving average over the delay of an envelope, which at each sample is at most the lowest gain that any
/// peak within the delay requires. So it changes smoothly and is low enough for the sample that is output now.
float PeakLimiter::gainFor(float peak)
{
    if (peak > 1.0F) {
        const float needed = 1.0F / peak;
        while (!m_bounds.empty() && m_bounds.back().gain >= needed)
            m_bounds.pop_back();
        m_bounds.push_back({m_position, needed});
    }
    if (!m_bounds.empty() && m_bounds.front().position < m_position - kDelay)
        m_bounds.pop_front();
    const float bound = m_bounds.empty() ? 1.0F : m_bounds.front().gain;
    m_envelope = std::min(bound, m_envelope + (1.0F - m_envelope) * kRelease);
    if (m_envelope > kAlmostOne && m_bounds.empty())
        m_envelope = 1.0F;
    m_envelopeSum += double(m_envelope) - double(m_envelopes[m_next]);
    m_envelopes[m_next] = m_envelope;
    return float(m_envelopeSum / (kDelay + 1));
}

void PeakLimiter::process(float *left, float *right, int count)
{
    for (int i = 0; i < count; ++i) {
        const float gain = gainFor(std::max(std::fabs(left[i]), std::fabs(right[i])));
        m_left[m_next] = left[i];
        m_right[m_next] = right[i];
        m_next = m_next < kDelay ? m_next + 1 : 0;
        ++m_position;
        left[i] = std::clamp(m_left[m_next] * gain, -1.0F, 1.0F);
        right[i] = std::clamp(m_right[m_next] * gain, -1.0F, 1.0F);
    }
}

} // namespace av
