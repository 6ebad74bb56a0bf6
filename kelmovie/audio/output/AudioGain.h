#pragma once

#include <QAudioFormat>
#include <QByteArray>

namespace kel
{

/// Amplifies sound, beyond its full scale if asked to: what would exceed it is bent instead of cut off. 16-bit integer
/// and float samples are amplified, others only muted.
class AudioGain
{
public:
    static constexpr double Max = 5.0;

    /// The gain to glide to, bounded to 0 … Max: 95 % of the way with each piece. What is not a number is ignored.
    void setTarget(double gain);
    /// Takes over the target at once.
    void jumpToTarget() { m_current = m_target; }
    void setMuted(bool on) { m_isMuted = on; }
    bool isMuted() const { return m_isMuted; }

    /// Processes the next piece of the sound in place.
    void apply(const QAudioFormat &format, QByteArray *piece);

    /// The decaying peak of what was processed; 1.0 is full scale.
    float level() const { return m_level; }
    void resetLevel() { m_level = 0; }

    /// Bends what lies beyond ±`threshold` so that it approaches ±1 smoothly.
    static float softClip(float x, float threshold);

private:
    double m_target = 1.0;
    double m_current = 1.0;
    bool m_isMuted = false;
    float m_level = 0;
};

} // namespace kel
