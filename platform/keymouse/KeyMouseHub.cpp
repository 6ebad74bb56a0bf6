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

constexpr std::chrono::seconds callbackLimit{5};

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
        const auto known = find(hook);
        if (known != m_hooks.end()) {
            if (known->kinds == kinds)
                return;
            known->kinds = kinds;
            if (kinds == 0)
                m_hooks.erase(known);
        } else {
            if (kinds == 0)
                return;
            m_hooks.push_back({hook, kinds});
        }
        if (kinds == 0 && m_dispatcher != std::this_thread::get_id() &&
            !m_callbackReturned.wait_for(lock, callbackLimit, [&] { return m_running != hook; }))
            qCCritical(logInput, "[KelKeyMouseHook] a callback does not return; its hook is removed while it runs");
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
    for (const Installed &installed : m_hooks)
        kinds |= installed.kinds;
    return kinds;
}

void KeyMouseHub::deliver(KelKeyboardEvent event)
{
    dispatch(KelKeyMouseHook::Keyboard, [event](KelKeyMouseHook *hook) { hook->OnKeyboardEvent(event); });
}

void KeyMouseHub::deliver(KelMouseEvent event)
{
    event.globalPosition = m_screens.toLogical(event.globalPosition);
    dispatch(event.state == 1 ? KelKeyMouseHook::ButtonPress : KelKeyMouseHook::ButtonRelease,
             [event](KelKeyMouseHook *hook) { hook->OnMouseEvent(event); });
}

void KeyMouseHub::deliver(KelWheelEvent event)
{
    event.globalPosition = m_screens.toLogical(event.globalPosition);
    dispatch(KelKeyMouseHook::Wheel, [event](KelKeyMouseHook *hook) { hook->OnMouseWheelEvent(event); });
}

template <typename Callback>
void KeyMouseHub::dispatch(int kind, Callback callback)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_dispatcher = std::this_thread::get_id();
    const std::vector<Installed> hooks = m_hooks; // callbacks may install and remove hooks
    for (const Installed &installed : hooks) {
        const auto present = find(installed.hook);
        if (present == m_hooks.end() || !(present->kinds & kind))
            continue;
        m_running = installed.hook;
        lock.unlock();
        callback(installed.hook);
        lock.lock();
        m_running = nullptr;
        m_callbackReturned.notify_all();
    }
    m_dispatcher = {};
}

std::vector<KeyMouseHub::Installed>::iterator KeyMouseHub::find(const KelKeyMouseHook *hook)
{
    return std::find_if(m_hooks.begin(), m_hooks.end(), [hook](const Installed &one) { return one.hook == hook; });
}

} // namespace kel
