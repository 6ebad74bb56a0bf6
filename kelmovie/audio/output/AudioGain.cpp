#include "audio/output/AudioGain.h"

#include <QtEndian>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace kel
{

namespace
{

constexpr float kGlide = 0.95F;
constexpr float kClipThreshold = 0.95F;
constexpr float kLevelDecay = 0.999F;
constexpr double kInaudible = 1e-12;
constexpr float kFullScale16 = 32768.0F;

float amplified(float x, double gain)
{
    const auto louder = float(double(x) * gain);
    return gain > 1.0 ? AudioGain::softClip(louder, kClipThreshold) : louder;
}

float amplify16(char *samples, int count, double gain, bool isChanged)
{
    float peak = 0;
    for (char *at = samples; at != samples + count * 2; at += 2) {
        auto sample = qFromLittleEndian<qint16>(at);
        if (isChanged) {
            const float x = amplified(float(sample) / kFullScale16, gain);
            sample = qint16(std::clamp(int(x * kFullScale16), -32768, 32767));
            qToLittleEndian(sample, at);
        }
        peak = std::max(peak, std::abs(float(sample)) / kFullScale16);
    }
    return peak;
}

float amplifyFloat(char *samples, int count, double gain, bool isChanged)
{
    float peak = 0;
    for (char *at = samples; at != samples + count * 4; at += 4) {
        auto sample = qFromLittleEndian<float>(at);
        if (isChanged) {
            const float x = amplified(sample, gain);
            sample = std::isnan(x) ? 0.0F : std::clamp(x, -1.0F, 1.0F);
            qToLittleEndian(sample, at);
        }
        peak = std::max(peak, std::abs(sample));
    }
    return peak;
}

} // namespace

void AudioGain::setTarget(double gain)
{
    if (!std::isnan(gain))
        m_target = std::clamp(gain, 0.0, kMax);
}

float AudioGain::softClip(float x, float threshold)
{
    const float room = 1.0F - threshold;
    if (x > threshold)
        return threshold + room * std::tanh((x - threshold) / room);
    if (x < -threshold)
        return -threshold - room * std::tanh((-x - threshold) / room);
    return x;
}

void AudioGain::apply(const QAudioFormat &format, QByteArray *piece)
{
    if (piece->isEmpty() || !format.isValid())
        return;
    m_current += (m_target - m_current) * double(kGlide);
    float peak = 0;
    if (m_isMuted || m_current <= kInaudible) {
        const bool isOffset = format.sampleType() == QAudioFormat::UnSignedInt;
        piece->fill(isOffset ? char(0x80) : char(0));
    } else {
        const bool isChanged = !qFuzzyCompare(m_current, 1.0);
        if (format.sampleType() == QAudioFormat::Float)
            peak = amplifyFloat(piece->data(), piece->size() / 4, m_current, isChanged);
        else if (format.sampleSize() == 16)
            peak = amplify16(piece->data(), piece->size() / 2, m_current, isChanged);
    }
    m_level = std::max(peak, m_level * kLevelDecay);
}

} // namespace kel
