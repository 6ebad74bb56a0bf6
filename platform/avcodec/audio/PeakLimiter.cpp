#include "avcodec/audio/PeakLimiter.h"

#include <algorithm>
#include <cmath>

namespace av
{

namespace
{

constexpr float kRelease = 0.0001F; // a share of the way back at each sample: about 200 ms at 48 kHz
constexpr float kAlmostOne = 0.9999F;

} // namespace

/// The gain at a sample is the mean of envelopes that each know the deepest dip within the delay: smooth, and never
/// above what the sample needs that comes out now.
float PeakLimiter::gainFor(float peak)
{
    if (peak > 1.0F) {
        const float needed = 1.0F / peak;
        while (!m_dips.empty() && m_dips.back().gain >= needed)
            m_dips.pop_back();
        m_dips.push_back({m_position, needed});
    }
    if (!m_dips.empty() && m_dips.front().position < m_position - kDelay)
        m_dips.pop_front();
    const float bound = m_dips.empty() ? 1.0F : m_dips.front().gain;
    m_envelope = std::min(bound, m_envelope + (1.0F - m_envelope) * kRelease);
    if (m_envelope > kAlmostOne && m_dips.empty())
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
