#pragma once

#include "keymouse/KeyMouseEventSource.h"

#include <memory>
#include <mutex>
#include <thread>

namespace kel
{

/// Input of the Windows desktop. While a hook is installed there are two threads: one for the hooks and one for the
/// callbacks.
class WindowsEventSource final : public KeyMouseEventSource
{
public:
    explicit WindowsEventSource(KeyMouseEventSink &sink);
    ~WindowsEventSource() override;

    void update() override;

private:
    struct Session;

    void endSession();
    void deliverEvents();

    KeyMouseEventSink &m_sink;
    std::mutex m_mutex;                 // guards the members below; acquired before the sink's
    std::shared_ptr<Session> m_session; // null while no hook is installed
    std::thread m_delivery;
    bool m_isDelivering = false; // false once that thread is about to end
    bool m_warned = false;
};

} // namespace kel
