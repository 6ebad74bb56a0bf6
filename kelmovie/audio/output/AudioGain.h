#pragma once

#include <QAudioFormat>
#include <QByteArray>

namespace kel
{

/// Amplifies sound. Samples that would exceed full scale are soft-clipped. 16-bit integer and float samples are
/// amplified, others only muted.
class AudioGain
{
public:
    static constexpr double kMax = 5.0;

    /// Sets the gain to approach, clamped to 0 to kMax: each piece covers 95 % of the difference. NaN is ignored.
    void setTarget(double gain);
    /// Applies the target without a transition.
    void jumpToTarget() { m_current = m_target; }
    void setMuted(bool on) { m_isMuted = on; }
    bool isMuted() const { return m_isMuted; }

    /// Processes the next piece of the sound in place.
    void apply(const QAudioFormat &format, QByteArray *piece);

    /// The decaying peak of the processed sound; 1.0 is full scale.
    float level() const { return m_level; }
    void resetLevel() { m_level = 0; }

    /// Compresses values beyond ±`threshold` so that they approach ±1 smoothly.
    static float softClip(float x, float threshold);

private:
    double m_target = 1.0;
    double m_current = 1.0;
    bool m_isMuted = false;
    float m_level = 0;
};

} // namespace kel
