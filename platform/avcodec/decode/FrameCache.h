#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <cstddef>
#include <deque>
#include <map>

namespace av
{

/// Recently decoded frames by number, within a memory limit. The frame decoded first is evicted first, which keeps the
/// frames just before the requested one: stepping backwards needs those next.
class FrameCache
{
public:
    explicit FrameCache(std::size_t capacityBytes)
        : m_capacityBytes(capacityBytes)
    {
    }

    /// Null if the frame is not cached. Valid until the next insert() or clear().
    const AVFrame *find(int number) const;

    /// Adds the frame as the newest one. It is kept even if it exceeds the limit alone.
    void insert(int number, Frame frame);

    void clear();

private:
    void remove(int number);

    const std::size_t m_capacityBytes;
    std::size_t m_bytes = 0;
    std::map<int, Frame> m_frames;
    std::deque<int> m_age; // frame numbers, oldest first
};

} // namespace av
