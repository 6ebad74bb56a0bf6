#pragma once

namespace kel
{

/// Between the frames of an animation, which has a rate of its own, and those of playback.
class EffectTiming
{
public:
    /// Length in playback frames of `count` animation frames, to the nearest, halves up. 0 where there is no telling.
    static int playbackFrames(double count, double animationRate, int playbackRate);
    /// The playback frame in which animation frame `frame` is reached. 0 where there is no telling.
    static int playbackFrame(int frame, double animationRate, int playbackRate);
    /// The animation frame to show at playback frame `frame`.
    static float animationFrame(int frame, double animationRate, int playbackRate);
};

} // namespace kel
