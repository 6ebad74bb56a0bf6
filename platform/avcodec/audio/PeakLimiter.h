#pragma once

#include <QtGlobal>

#include <deque>
#include <vector>

namespace av
{

/// Look-ahead limiter for stereo audio: lowers the gain smoothly before a peak that would exceed full scale and raises
/// it slowly afterwards. Audio within full scale passes unchanged.
class PeakLimiter
{
public:
    /// Latency in samples.
    static constexpr int kDelay = 240;

    /// Replaces `count` samples of both channels by those that came in `kDelay` samples before.
    void process(float *left, float *right, int count);

private:
    struct GainBound {
        qint64 position;
        float gain;
    };

    float gainFor(float peak);

    qint64 m_position = 0;
    std::deque<GainBound> m_bounds; // gains below 1 required by peaks within the delay, ascending
    float m_envelope = 1.0F;
    // Ring buffers of the last kDelay + 1 samples:
    std::vector<float> m_envelopes = std::vector<float>(kDelay + 1, 1.0F);
    std::vector<float> m_left = std::vector<float>(kDelay + 1);
    std::vector<float> m_right = std::vector<float>(kDelay + 1);
    double m_envelopeSum = kDelay + 1;
    size_t m_next = 0; // index of the oldest entry
};

} // namespace av
