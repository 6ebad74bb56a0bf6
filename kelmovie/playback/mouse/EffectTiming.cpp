#include "playback/mouse/EffectTiming.h"

#include <QtGlobal>

#include <cmath>

namespace kel
{

namespace
{

/// Handles the rate 0 of an animation that could not be loaded, and keeps the result in the range of int.
int toFrames(double frames)
{
    constexpr double maxFrames = 1e9;
    return std::isfinite(frames) ? int(qBound(-maxFrames, frames, maxFrames)) : 0;
}

} // namespace

int EffectTiming::playbackFrames(double count, double animationRate, int playbackRate)
{
    return toFrames(std::floor(count * playbackRate / animationRate + 0.5));
}

int EffectTiming::playbackFrame(int frame, double animationRate, int playbackRate)
{
    return toFrames(double(qint64(frame) * playbackRate) / animationRate);
}

float EffectTiming::animationFrame(int frame, double animationRate, int playbackRate)
{
    return float(animationRate * frame / playbackRate);
}

} // namespace kel
