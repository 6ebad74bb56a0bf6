#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <cstddef>
#include <deque>
#include <map>

namespace av
{

/// The decoded frames of late, by number, within a bound of memory. What was decoded first goes first: then the frames
/// just before the one that was asked for stay, which stepping backwards asks for next.
class FrameCache
{
public:
    explicit FrameCache(std::size_t capacityBytes)
        : m_capacityBytes(capacityBytes)
    {
    }

    /// Null when the frame is not here. Valid until the next insert() or clear().
    const AVFrame *find(int number) const;

    /// Takes the frame as the newest one; it is kept even if it alone is over the bound.
    void insert(int number, av::Frame frame);

    void clear();

private:
    void remove(int number);

    const std::size_t m_capacityBytes;
    std::size_t m_bytes = 0;
    std::map<int, av::Frame> m_frames;
    std::deque<int> m_age; // numbers, oldest first
};

} // namespace av
