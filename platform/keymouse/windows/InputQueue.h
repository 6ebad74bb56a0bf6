#pragma once

#include "keymouse/windows/VirtualKeys.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

#include <windows.h>

namespace kel
{

/// An event as the hook received it.
struct WindowsInputEvent {
    bool isKey = false;
    UINT message = 0; ///< WM_KEYDOWN, WM_LBUTTONDOWN, …
    union {
        KBDLLHOOKSTRUCT key;
        MSLLHOOKSTRUCT mouse;
    };
    HKL layout = nullptr;         ///< of the program that receives the key
    ModifierKeySet heldModifiers; ///< before the key
};

/// Events between the hooks, which must not wait, and the callbacks, which may take their time. One producer and one
/// consumer thread.
class InputQueue
{
public:
    /// Never waits. False when the queue is full; the event is lost.
    bool push(const WindowsInputEvent &event);

    /// Waits for an event. False once the queue is closed.
    bool pop(WindowsInputEvent *event);

    /// Discards all events, and ends pop().
    void close();

private:
    std::mutex m_mutex; // guards the members below
    std::condition_variable m_changed;
    std::deque<WindowsInputEvent> m_events;
    bool m_isClosed = false;
};

} // namespace kel
