#pragma once

#include <QtGlobal>

#include <deque>
#include <vector>

namespace av
{

/// Keeps stereo sound within full scale: the level sinks smoothly shortly before a peak that would exceed it, and rises
/// slowly afterwards. What stays within full scale passes unchanged.
class PeakLimiter
{
public:
    /// Samples by which the sound comes out later.
    static constexpr int kDelay = 240;

    /// Replaces `count` samples of both channels by those that came `kDelay` samples before.
    void process(float *left, float *right, int count);

private:
    struct Dip {
        qint64 position;
        float gain;
    };

    float gainFor(float peak);

    qint64 m_position = 0;
    std::deque<Dip> m_dips; // needed gains below 1 within the delay, rising
    float m_envelope = 1.0F;
    // Of the last kDelay + 1 samples, in rings:
    std::vector<float> m_envelopes = std::vector<float>(kDelay + 1, 1.0F);
    std::vector<float> m_left = std::vector<float>(kDelay + 1);
    std::vector<float> m_right = std::vector<float>(kDelay + 1);
    double m_envelopeSum = kDelay + 1;
    size_t m_next = 0; // the oldest place in the rings
};

} // namespace av
