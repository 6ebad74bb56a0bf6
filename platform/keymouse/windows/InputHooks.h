#pragma once

#include <QString>

#include <condition_variable>
#include <mutex>
#include <thread>

#include <windows.h>

namespace kel
{

class InputQueue;

/// Windows' low-level hooks, on a thread of their own whose message loop they are called from: input of the whole
/// desktop passes through it before anybody else sees it, so it does nothing but copy events into a queue.
///
/// Windows drops a hook that once did not answer in time, and tells nobody. A hook that hears nothing although there is
/// input is installed anew.
class InputHooks
{
public:
    /// Nothing is hooked yet. The queue must outlive this.
    explicit InputHooks(InputQueue &queue);
    ~InputHooks();
    InputHooks(const InputHooks &) = delete;
    InputHooks &operator=(const InputHooks &) = delete;

    /// Hooks keys, the mouse, both or neither from now on. Returns when that is done, or after a limit. False, with
    /// errorString(), when Windows refuses.
    bool setHooked(bool keys, bool mouse);

    QString errorString() const;

private:
    class Hook;

    void run();
    void apply(Hook &keys, Hook &mouse);

    InputQueue &m_queue;
    const HANDLE m_wake;

    mutable std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    bool m_wantsKeys = false;
    bool m_wantsMouse = false;
    bool m_quit = false;
    unsigned m_requested = 0; // number of the last request
    unsigned m_served = 0;    // number of the last one that was carried out
    QString m_error;

    std::thread m_thread; // last: it uses all of the above
};

} // namespace kel
