#pragma once

#include <atomic>

namespace kel
{

/// Assigns input events to logic frames. An event from an input hook belongs to the frame that its track recorded last,
/// also while the recording is paused. Thread-safe: the track sets the frame, the hook's thread asks for it.
class EventFrameStamp
{
public:
    void setCurrentFrame(int frameIndex) { m_currentFrame = frameIndex; }

    /// The logic frame of an event that happens now.
    int frameOfEvent() const { return m_currentFrame; }

private:
    std::atomic<int> m_currentFrame{0};
};

} // namespace kel
