#include "keymouse/windows/WindowsEventSource.h"

#include "keymouse/KelKeyMouseHook.h"
#include "keymouse/windows/InputHooks.h"
#include "keymouse/windows/InputQueue.h"
#include "keymouse/windows/WindowsInputMapper.h"
#include "logging/PlatformLog.h"

#include <QDebug>

namespace kel
{

/// Exists from the first installed hook to the last.
struct WindowsEventSource::Session {
    InputQueue queue;
    InputHooks hooks{queue};
};

std::unique_ptr<KeyMouseEventSource> createKeyMouseEventSource(KeyMouseEventSink &sink)
{
    return std::make_unique<WindowsEventSource>(sink);
}

WindowsEventSource::WindowsEventSource(KeyMouseEventSink &sink)
    : m_sink(sink)
{
}

WindowsEventSource::~WindowsEventSource()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        endSession();
    }
    if (m_delivery.joinable())
        m_delivery.join();
}

void WindowsEventSource::update()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    const int kinds = m_sink.wantedKinds();
    if (kinds == 0) {
        m_warned = false;
        endSession();
        return;
    }
    if (!m_session)
        m_session = std::make_shared<Session>();
    if (!m_isDelivering) {
        if (m_delivery.joinable())
            m_delivery.join(); // returns at once: clearing the flag is its last action
        m_isDelivering = true;
        m_delivery = std::thread(&WindowsEventSource::deliverEvents, this);
    }
    if (!m_session->hooks.setHooked(kinds & KelKeyMouseHook::Keyboard, kinds & KelKeyMouseHook::Mouse) && !m_warned) {
        m_warned = true;
        qCWarning(logInput, "[KelKeyMouseHook] keyboard and mouse cannot be monitored: %s",
                  qUtf8Printable(m_session->hooks.errorString()));
    }
}

void WindowsEventSource::endSession()
{
    if (!m_session)
        return;
    m_session->hooks.setHooked(false, false);
    m_session->queue.close();
    m_session.reset();
}

void WindowsEventSource::deliverEvents()
{
    for (;;) {
        std::shared_ptr<Session> session;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            session = m_session;
            m_isDelivering = session != nullptr;
        }
        if (!session)
            return;
        WindowsInputMapper mapper(m_sink);
        WindowsInputEvent event;
        while (session->queue.pop(&event))
            mapper.deliver(event);
    }
}

} // namespace kel
