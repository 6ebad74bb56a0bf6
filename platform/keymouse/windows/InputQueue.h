#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

#include <windows.h>

namespace kel
{

/// What a hook was told, as it was told.
struct WindowsInputEvent {
    bool isKey = false;
    UINT message = 0; ///< WM_KEYDOWN, WM_LBUTTONDOWN, …
    union {
        KBDLLHOOKSTRUCT key;
        MSLLHOOKSTRUCT mouse;
    };
    HKL layout = nullptr; ///< of the program that gets the key
};

/// Events on their way from the hooks, which must not wait, to the callbacks, which may take their time. Two threads.
class InputQueue
{
public:
    /// Never waits. False when the queue is full: the event is lost.
    bool push(const WindowsInputEvent &event);

    /// Waits for an event. False once the queue is closed.
    bool pop(WindowsInputEvent *event);

    /// Nobody wants to know any more, nor what is still in the queue.
    void close();

private:
    std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    std::deque<WindowsInputEvent> m_events;
    bool m_isClosed = false;
};

} // namespace kel
