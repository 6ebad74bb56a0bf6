#pragma once

namespace kel
{

/// Converts between frames of an animation, which has its own frame rate, and playback frames.
class EffectTiming
{
public:
    /// Length in playback frames of `count` animation frames, rounded to the nearest, halves up. 0 if it is undefined.
    static int playbackFrames(double count, double animationRate, int playbackRate);
    /// The playback frame at which animation frame `frame` is reached. 0 if it is undefined.
    static int playbackFrame(int frame, double animationRate, int playbackRate);
    /// The animation frame to show at playback frame `frame`.
    static float animationFrame(int frame, double animationRate, int playbackRate);
};

} // namespace kel
