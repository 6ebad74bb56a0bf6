#pragma once

#include <QtGlobal>

namespace kel
{

/// Which sample frame of a sound each frame of the same sound at another speed is: always the earlier neighbour, never
/// a blend. The two directions round in ways of their own.
class SpeedFrameMap
{
public:
    /// `speed` is above 0.
    SpeedFrameMap(int inFrames, double speed);

    /// The output would have more frames than can be counted; nothing else may be asked then.
    bool isTooLong() const { return m_outFrames < 0; }
    int outFrames() const { return m_outFrames; }
    double speed() const { return m_speed; }

    /// The input frames of `count` output frames from `first` on; they never fall.
    void sourceFrames(int first, int count, int *sources) const;

private:
    int m_inFrames;
    double m_speed;
    int m_outFrames;
};

} // namespace kel
