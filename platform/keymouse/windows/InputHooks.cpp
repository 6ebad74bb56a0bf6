#include "keymouse/windows/InputHooks.h"

#include "keymouse/windows/InputQueue.h"
#include "logging/PlatformLog.h"

#include <qt_windows.h>

#include <QDebug>

#include <chrono>

namespace kel
{

namespace
{

constexpr std::chrono::seconds kRequestTimeout{2};
constexpr DWORD kCheckIntervalMs = 1000;

// Belong to the thread that installs the hooks, on which Windows calls them.
thread_local InputQueue *t_queue = nullptr;
thread_local DWORD t_lastKeyTime = 0;
thread_local DWORD t_lastMouseTime = 0;
thread_local bool t_isFull = false;

void push(const WindowsInputEvent &event)
{
    const bool pushed = t_queue->push(event);
    if (!pushed && !t_isFull)
        qCWarning(logInput, "[KelKeyMouseHook] events are lost: a callback does not keep up");
    t_isFull = !pushed;
}

LRESULT CALLBACK onKey(int code, WPARAM message, LPARAM data)
{
    if (code == HC_ACTION) {
        WindowsInputEvent event{};
        event.isKey = true;
        event.message = UINT(message);
        event.key = *reinterpret_cast<const KBDLLHOOKSTRUCT *>(data);
        event.layout = GetKeyboardLayout(GetWindowThreadProcessId(GetForegroundWindow(), nullptr));
        for (std::size_t i = 0; i < kModifierKeys.size(); ++i)
            event.heldModifiers.set(i, GetAsyncKeyState(kModifierKeys[i]) < 0);
        t_lastKeyTime = GetTickCount();
        push(event);
    }
    return CallNextHookEx(nullptr, code, message, data);
}

LRESULT CALLBACK onMouse(int code, WPARAM message, LPARAM data)
{
    if (code == HC_ACTION) {
        t_lastMouseTime = GetTickCount();
        if (message != WM_MOUSEMOVE) {
            WindowsInputEvent event{};
            event.message = UINT(message);
            event.mouse = *reinterpret_cast<const MSLLHOOKSTRUCT *>(data);
            push(event);
        }
    }
    return CallNextHookEx(nullptr, code, message, data);
}

} // namespace

/// One hook. Belongs to the hook thread.
class InputHooks::Hook
{
public:
    Hook(int kind, HOOKPROC procedure)
        : m_kind(kind)
        , m_procedure(procedure)
    {
    }
    ~Hook() { set(false); }
    Hook(const Hook &) = delete;
    Hook &operator=(const Hook &) = delete;

    bool isSet() const { return m_hook != nullptr; }

    /// False when Windows refuses.
    bool set(bool wanted)
    {
        if (!wanted && m_hook) {
            UnhookWindowsHookEx(m_hook);
            m_hook = nullptr;
        } else if (wanted && !m_hook) {
            m_hook = SetWindowsHookExW(m_kind, m_procedure, GetModuleHandleW(nullptr), 0);
        }
        return isSet() == wanted;
    }

    /// Reinstalls the hook when there was input well after its last event, which may have been input of the other kind.
    /// No event is delivered twice or lost in between: Windows calls hooks only while the thread retrieves messages.
    void reinstallIfDropped(DWORD *lastEventTime)
    {
        LASTINPUTINFO input{sizeof input, 0};
        if (!isSet() || !GetLastInputInfo(&input) || int(input.dwTime - *lastEventTime) <= int(kCheckIntervalMs))
            return;
        *lastEventTime = input.dwTime;
        const HHOOK old = m_hook;
        m_hook = SetWindowsHookExW(m_kind, m_procedure, GetModuleHandleW(nullptr), 0);
        UnhookWindowsHookEx(old);
    }

private:
    const int m_kind;
    const HOOKPROC m_procedure;
    HHOOK m_hook = nullptr;
};

InputHooks::InputHooks(InputQueue &queue)
    : m_queue(queue)
    , m_wake(CreateEventW(nullptr, FALSE, FALSE, nullptr))
    , m_thread(&InputHooks::run, this)
{
}

InputHooks::~InputHooks()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_quit = true;
    }
    SetEvent(m_wake);
    m_thread.join();
    CloseHandle(m_wake);
}

bool InputHooks::setHooked(bool keys, bool mouse)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_wantsKeys = keys;
    m_wantsMouse = mouse;
    const unsigned request = ++m_requested;
    SetEvent(m_wake);
    m_changed.wait_for(lock, kRequestTimeout, [&] { return int(m_served - request) >= 0; });
    return m_error.isEmpty();
}

QString InputHooks::errorString() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_error;
}

void InputHooks::run()
{
    t_queue = &m_queue;
    Hook keys(WH_KEYBOARD_LL, onKey);
    Hook mouse(WH_MOUSE_LL, onMouse);
    DWORD lastCheck = GetTickCount();
    for (;;) {
        const bool hooked = keys.isSet() || mouse.isSet();
        const DWORD wakeReason = MsgWaitForMultipleObjectsEx(1, &m_wake, hooked ? kCheckIntervalMs : INFINITE,
                                                             QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) // also calls the hooks
            DispatchMessageW(&message);
        if (wakeReason == WAIT_OBJECT_0) {
            {
                const std::lock_guard<std::mutex> lock(m_mutex);
                if (m_quit)
                    return;
            }
            apply(keys, mouse);
        }
        if (GetTickCount() - lastCheck >= kCheckIntervalMs) {
            lastCheck = GetTickCount();
            keys.reinstallIfDropped(&t_lastKeyTime);
            mouse.reinstallIfDropped(&t_lastMouseTime);
        }
    }
}

void InputHooks::apply(Hook &keys, Hook &mouse)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    t_lastKeyTime = t_lastMouseTime = GetTickCount();
    m_error.clear();
    if (!keys.set(m_wantsKeys) || !mouse.set(m_wantsMouse))
        m_error = QStringLiteral("Windows refuses to install a hook (error %1)").arg(GetLastError());
    m_served = m_requested;
    m_changed.notify_all();
}

} // namespace kel
