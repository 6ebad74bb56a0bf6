#include "audio/output/AudioSync.h"

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

// The lead is measured from kSettleMs, when the buffer has been filled, to kMeasureMs.
constexpr qint64 kSettleMs = 200;
constexpr qint64 kMeasureMs = 1000;
// A device takes sound in blocks, which makes the lead appear negative.
constexpr double kMinLeadMs = -25;
constexpr double kMaxLeadMs = 500;

constexpr double kSmoothingMs = 400;
constexpr double kMaxWeight = 0.25; // limits the effect of one measurement after this thread was blocked
constexpr double kToleratedLagMs = 40;
constexpr double kCorrectedLagMs = 5;
constexpr double kLostLagMs = 150;
constexpr double kCorrectionMs = 4000; // time in which a deviation is corrected
constexpr double kMaxCorrection = 0.02;

} // namespace

void AudioSync::begin(qint64 nowMs, double positionMs, double rate)
{
    *this = AudioSync();
    m_beginMs = m_lastMs = nowMs;
    m_beginPositionMs = positionMs;
    m_rate = rate;
}

bool AudioSync::isMeasuring(qint64 nowMs) const
{
    return nowMs - m_beginMs < kMeasureMs;
}

void AudioSync::update(qint64 nowMs, double positionMs, double expectedMs)
{
    const auto elapsedMs = double(nowMs - m_beginMs);
    if (isMeasuring(nowMs)) {
        if (elapsedMs >= kSettleMs) {
            m_leadSumMs += (positionMs - m_beginPositionMs) / m_rate - elapsedMs;
            ++m_leadCount;
        }
        m_lastMs = nowMs;
        return;
    }
    const double leadMs = m_leadCount ? std::clamp(m_leadSumMs / m_leadCount, kMinLeadMs, kMaxLeadMs) : 0.0;
    const double lagMs = (expectedMs - positionMs) / m_rate + leadMs;
    m_lagMs += (lagMs - m_lagMs) * std::clamp(double(nowMs - m_lastMs) / kSmoothingMs, 0.0, kMaxWeight);
    m_lastMs = nowMs;

    const bool isCorrecting = m_correction != 1.0;
    if (std::abs(m_lagMs) > (isCorrecting ? kCorrectedLagMs : kToleratedLagMs))
        m_correction = 1.0 + std::clamp(m_lagMs / kCorrectionMs, -kMaxCorrection, kMaxCorrection);
    else
        m_correction = 1.0;
    m_isLost = std::abs(m_lagMs) > kLostLagMs;
}

} // namespace kel
