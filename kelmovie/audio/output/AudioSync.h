#pragma once

#include <QtGlobal>

namespace kel
{

/// Keeps sound in sync with the video, which follows the wall clock while sound follows the clock of its device. Small
/// deviations are corrected by an inaudible change of the rate; large ones require a restart.
///
/// The device takes sound some time before it is heard, and does not report how long. This lead is measured in the
/// first second: it is what the device takes in excess of the elapsed time.
class AudioSync
{
public:
    /// Playback starts at `positionMs`, which is in sync, at `rate` ms of the file per ms.
    void begin(qint64 nowMs, double positionMs, double rate);
    /// `positionMs` is the position up to which the device has taken sound; `expectedMs` should be heard now.
    void update(qint64 nowMs, double positionMs, double expectedMs);

    /// The rate to play at from now on.
    double rate() const { return m_rate * m_correction; }
    /// Too far out of sync to be corrected; playback has to be restarted.
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
    double m_lagMs = 0; ///< smoothed; wall-clock ms that the sound is behind the video
    bool m_isLost = false;
};

} // namespace kel
