#include "avcodec/decode/FrameCache.h"

#include <algorithm>
#include <utility>

namespace av
{

namespace
{

std::size_t bytesOf(const AVFrame &frame)
{
    std::size_t bytes = sizeof(AVFrame);
    for (const AVBufferRef *buffer : frame.buf)
        bytes += buffer ? buffer->size : 0;
    return bytes;
}

} // namespace

const AVFrame *FrameCache::find(int number) const
{
    const auto entry = m_frames.find(number);
    return entry == m_frames.end() ? nullptr : entry->second.get();
}

void FrameCache::insert(int number, Frame frame)
{
    remove(number);
    m_bytes += bytesOf(*frame);
    while (!m_age.empty() && m_bytes > m_capacityBytes)
        remove(m_age.front());
    m_frames[number] = std::move(frame);
    m_age.push_back(number);
}

void FrameCache::clear()
{
    m_frames.clear();
    m_age.clear();
    m_bytes = 0;
}

void FrameCache::remove(int number)
{
    const auto entry = m_frames.find(number);
    if (entry == m_frames.end())
        return;
    m_bytes -= bytesOf(*entry->second);
    m_frames.erase(entry);
    m_age.erase(std::find(m_age.begin(), m_age.end(), number));
}

} // namespace av
