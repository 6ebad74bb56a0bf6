#include "keymouse/windows/InputQueue.h"

namespace kel
{

namespace
{

// Minutes of human input, seconds of generated input.
constexpr std::size_t kMaxEvents = 10'000;

} // namespace

bool InputQueue::push(const WindowsInputEvent &event)
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_events.size() >= kMaxEvents)
            return false;
        m_events.push_back(event);
    }
    m_changed.notify_one();
    return true;
}

bool InputQueue::pop(WindowsInputEvent *event)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isClosed || !m_events.empty(); });
    if (m_isClosed)
        return false;
    *event = m_events.front();
    m_events.pop_front();
    return true;
}

void InputQueue::close()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_isClosed = true;
        m_events.clear();
    }
    m_changed.notify_all();
}

} // namespace kel
