#pragma once

#include <QString>

#include <condition_variable>
#include <mutex>
#include <thread>

#include <windows.h>

namespace kel
{

class InputQueue;

/// Low-level hooks of Windows on their own thread, whose message loop calls them. All input of the desktop passes
/// through it before any program receives it, so it only copies events into a queue.
///
/// Windows silently removes a hook that once exceeded its time limit. A hook that receives no events although there is
/// input is reinstalled.
class InputHooks
{
public:
    /// No hook is installed yet. The queue must outlive the object.
    explicit InputHooks(InputQueue &queue);
    ~InputHooks();
    InputHooks(const InputHooks &) = delete;
    InputHooks &operator=(const InputHooks &) = delete;

    /// Hooks keys, the mouse, both or neither from now on. Returns when that is done or after a timeout. False, with
    /// errorString(), when Windows refuses.
    bool setHooked(bool keys, bool mouse);

    QString errorString() const;

private:
    class Hook;

    void run();
    void apply(Hook &keys, Hook &mouse);

    InputQueue &m_queue;
    const HANDLE m_wake;

    mutable std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    bool m_wantsKeys = false;
    bool m_wantsMouse = false;
    bool m_quit = false;
    unsigned m_requested = 0; // number of the last request
    unsigned m_served = 0;    // number of the last completed request
    QString m_error;

    std::thread m_thread; // last: it uses the members above
};

} // namespace kel
