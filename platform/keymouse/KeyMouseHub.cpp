#include "keymouse/KeyMouseHub.h"

#include "keymouse/KelKeyMouseHook.h"
#include "logging/PlatformLog.h"

#include <QDebug>

#include <algorithm>
#include <chrono>

namespace kel
{

namespace
{

constexpr std::chrono::seconds kCallbackTimeout{5};

} // namespace

KeyMouseHub &KeyMouseHub::instance()
{
    static KeyMouseHub hub;
    return hub;
}

KeyMouseHub::KeyMouseHub()
    : m_source(createKeyMouseEventSource(*this))
{
}

KeyMouseHub::~KeyMouseHub() = default;

void KeyMouseHub::setHookKinds(KelKeyMouseHook *hook, int kinds)
{
    kinds &= KelKeyMouseHook::Keyboard | KelKeyMouseHook::Mouse;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const auto registration = find(hook);
        if (registration != m_hooks.end()) {
            if (registration->kinds == kinds)
                return;
            registration->kinds = kinds;
            if (kinds == 0)
                m_hooks.erase(registration);
        } else {
            if (kinds == 0)
                return;
            m_hooks.push_back({hook, kinds});
        }
        if (kinds == 0 && m_dispatcher != std::this_thread::get_id() &&
            !m_callbackReturned.wait_for(lock, kCallbackTimeout, [&] { return m_running != hook; }))
            qCCritical(logInput,
                       "[KelKeyMouseHook] a callback does not return; its hook is removed while it is running");
    }
    m_source->update();
}

void KeyMouseHub::setSource(std::unique_ptr<KeyMouseEventSource> source)
{
    m_source = source ? std::move(source) : createKeyMouseEventSource(*this);
}

int KeyMouseHub::wantedKinds() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    int kinds = 0;
    for (const Registration &registration : m_hooks)
        kinds |= registration.kinds;
    return kinds;
}

void KeyMouseHub::deliver(KelKeyboardEvent event)
{
    dispatch(KelKeyMouseHook::Keyboard, [event](KelKeyMouseHook *hook) { hook->OnKeyboardEvent(event); });
}

void KeyMouseHub::deliver(KelMouseEvent event)
{
    if (event.hasPosition)
        event.globalPosition = m_screens.toLogical(event.globalPosition);
    dispatch(event.state == 1 ? KelKeyMouseHook::ButtonPress : KelKeyMouseHook::ButtonRelease,
             [event](KelKeyMouseHook *hook) { hook->OnMouseEvent(event); });
}

void KeyMouseHub::deliver(KelWheelEvent event)
{
    if (event.hasPosition)
        event.globalPosition = m_screens.toLogical(event.globalPosition);
    dispatch(KelKeyMouseHook::Wheel, [event](KelKeyMouseHook *hook) { hook->OnMouseWheelEvent(event); });
}

template <typename Callback>
void KeyMouseHub::dispatch(int kind, Callback callback)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_dispatcher = std::this_thread::get_id();
    const std::vector<Registration> hooks = m_hooks; // callbacks may install and remove hooks
    for (const Registration &registration : hooks) {
        const auto present = find(registration.hook);
        if (present == m_hooks.end() || !(present->kinds & kind))
            continue;
        m_running = registration.hook;
        lock.unlock();
        callback(registration.hook);
        lock.lock();
        m_running = nullptr;
        m_callbackReturned.notify_all();
    }
    m_dispatcher = {};
}

std::vector<KeyMouseHub::Registration>::iterator KeyMouseHub::find(const KelKeyMouseHook *hook)
{
    return std::find_if(m_hooks.begin(), m_hooks.end(), [hook](const Registration &one) { return one.hook == hook; });
}

} // namespace kel
