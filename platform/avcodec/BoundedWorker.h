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

/// A thread that handles items in order, fed by one producer through a queue of bounded length.
/// The handler runs on the worker's thread and answers false to end the work for good (it failed).
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

    /// No item can be taken right now without waiting. The item in work counts.
    bool isFull() const
    {
        std::lock_guard lock(m_mutex);
        return m_pending >= m_capacity;
    }

    /// Whether push() need not wait, once at most `limit` has passed.
    bool waitForRoom(std::chrono::milliseconds limit) const
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, limit, [this] { return m_closed || m_pending < m_capacity; });
    }

    /// Hands over an item, waiting for room at most `limit`. False when the worker has ended or the limit was reached.
    bool push(Item item, std::chrono::milliseconds limit = std::chrono::minutes(1))
    {
        std::unique_lock lock(m_mutex);
        if (!m_changed.wait_for(lock, limit, [this] { return m_closed || m_pending < m_capacity; }) || m_closed)
            return false;
        m_items.push_back(std::move(item));
        ++m_pending;
        m_changed.notify_all();
        return true;
    }

    /// Handles what is queued, then ends the thread. Returns when it has ended.
    void finish()
    {
        close(false);
        join();
    }

    /// Drops what is queued and lets the thread end after the item in work. Does not wait.
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
            const bool goOn = m_handler(*item);
            item.reset(); // which may take its time
            lock.lock();
            --m_pending;
            if (!goOn)
                m_closed = m_isAborted = true;
            m_changed.notify_all();
        }
        const std::deque<Item> dropped = std::exchange(m_items, {});
        m_pending -= dropped.size();
        lock.unlock(); // before they go
    }

    const std::size_t m_capacity;
    const Handler m_handler;
    mutable std::mutex m_mutex;
    mutable std::condition_variable m_changed;
    std::deque<Item> m_items;
    std::size_t m_pending = 0; // queued and in work
    bool m_closed = false;
    bool m_isAborted = false; // what is queued is not wanted
    std::thread m_thread;     // last: it uses all of the above
};

} // namespace av
