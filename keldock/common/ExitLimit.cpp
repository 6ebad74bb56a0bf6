#include "common/ExitLimit.h"

#include <chrono>
#include <cstdlib>

namespace
{

constexpr std::chrono::seconds kLimit(2);

} // namespace

ExitLimit::~ExitLimit()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
        m_changed.notify_all();
    }
    m_thread.join();
}

void ExitLimit::start(int status)
{
    m_thread = std::thread([this, status] {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, kLimit, [this] { return m_isOver; }))
            std::_Exit(status);
    });
}
