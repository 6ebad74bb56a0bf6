#pragma once

#include <QtGlobal>

namespace kel
{

/// Tells how a sound that is being played has to change its rate to stay with the picture, whose clock is not the sound
/// device's. Small deviations are worn off by a change of pitch that nobody hears, large ones need a new start.
///
/// The device takes sound some time before it is heard. How long, it does not tell; but what it took in the first
/// second beyond what a second holds is what it keeps.
class AudioSync
{
public:
    /// The sound begins at `positionMs`, which is right, and goes on with `rate` ms of the file in each ms.
    void begin(qint64 nowMs, double positionMs, double rate);
    /// `positionMs` is what the device has taken, `expectedMs` what should be heard now.
    void update(qint64 nowMs, double positionMs, double expectedMs);

    /// The rate to play at from now on.
    double rate() const { return m_rate * m_correction; }
    /// Too far off to be worn off: begin anew.
    bool isLost() const { return m_isLost; }

private:
    bool isMeasuring(qint64 nowMs) const;

    qint64 m_beginMs = 0;
    qint64 m_lastMs = 0;
    double m_beginPositionMs = 0;
    double m_rate = 1.0;
    double m_correction = 1.0;
    double m_leadSumMs = 0;
    int m_leadCount = 0;
    double m_lagMs = 0; ///< smoothed; wall-clock ms that the sound is behind the picture
    bool m_isLost = false;
};

} // namespace kel
