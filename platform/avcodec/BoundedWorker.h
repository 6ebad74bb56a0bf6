#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace av
{

/// Thread that handles items in order, fed by one producer through a bounded queue. The handler runs on that thread; if
/// it returns false, the worker stops for good.
template <typename Item>
class BoundedWorker
{
public:
    using Handler = std::function<bool(Item &)>;

    BoundedWorker(std::size_t capacity, Handler handler)
        : m_capacity(capacity)
        , m_handler(std::move(handler))
        , m_thread([this] { run(); })
    {
    }

    ~BoundedWorker()
    {
        abort();
        join();
    }

    BoundedWorker(const BoundedWorker &) = delete;
    BoundedWorker &operator=(const BoundedWorker &) = delete;

    /// True if push() would have to wait. The item being handled counts.
    bool isFull() const
    {
        std::lock_guard lock(m_mutex);
        return m_pending >= m_capacity;
    }

    /// Waits up to `timeout` until push() no longer has to wait. False on timeout.
    bool waitForRoom(std::chrono::milliseconds timeout) const
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, timeout, [this] { return m_closed || m_pending < m_capacity; });
    }

    /// Queues an item, waiting up to `timeout` for room. False on timeout or if the worker has stopped.
    bool push(Item item, std::chrono::milliseconds timeout = std::chrono::minutes(1))
    {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, timeout, [this] { return m_closed || m_pending < m_capacity; }) || m_closed)
            return false;
        m_items.push_back(std::move(item));
        ++m_pending;
        m_changed.notify_all();
        return true;
    }

    /// Handles what is queued, then stops the thread and waits for its end.
    void finish()
    {
        close(false);
        join();
    }

    /// Drops what is queued and stops the thread after the item being handled. Does not wait.
    void abort() { close(true); }

private:
    void close(bool dropItems)
    {
        std::lock_guard lock(m_mutex);
        m_closed = true;
        m_isAborted = m_isAborted || dropItems;
        m_changed.notify_all();
    }

    void join()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    void run()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [this] { return m_closed || !m_items.empty(); });
            if (m_items.empty() || m_isAborted)
                break;
            std::optional<Item> item = std::move(m_items.front());
            m_items.pop_front();
            lock.unlock();
            const bool succeeded = m_handler(*item);
            item.reset(); // outside the lock, as destroying it may take long
            lock.lock();
            --m_pending;
            if (!succeeded)
                m_closed = m_isAborted = true;
            m_changed.notify_all();
        }
        const std::deque<Item> dropped = std::exchange(m_items, {});
        m_pending -= dropped.size();
        lock.unlock(); // before they are destroyed, which may take long
    }

    const std::size_t m_capacity;
    const Handler m_handler;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::deque<Item> m_items;
    std::size_t m_pending = 0; // queued or being handled
    bool m_closed = false;
    bool m_isAborted = false; // drop what is queued
    std::thread m_thread;     // last: it uses all of the above
};

} // namespace av
