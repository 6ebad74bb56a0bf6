#pragma once

#include <QtGlobal>

namespace kel
{

/// Maps each sample frame of a sound at another speed to a frame of the original: the preceding one, without
/// interpolation. Slower and faster speeds round differently.
class SpeedFrameMap
{
public:
    /// `speed` is above 0.
    SpeedFrameMap(int inFrames, double speed);

    /// The number of output frames exceeds an int; no other function may be called then.
    bool isTooLong() const { return m_outFrames < 0; }
    int outFrames() const { return m_outFrames; }
    double speed() const { return m_speed; }

    /// Stores the input frames of `count` output frames from `first` on, in non-decreasing order.
    void sourceFrames(int first, int count, int *sources) const;

private:
    int m_inFrames;
    double m_speed;
    int m_outFrames;
};

} // namespace kel
