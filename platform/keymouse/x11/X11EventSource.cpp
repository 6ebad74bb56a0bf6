#include "keymouse/x11/X11EventSource.h"

#include "keymouse/KelKeyMouseHook.h"
#include "keymouse/x11/X11InputMapper.h"
#include "keymouse/x11/X11InputRecorder.h"
#include "logging/PlatformLog.h"

#include <QDebug>

#include <xcb/xcb.h>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <vector>

namespace kel
{

namespace
{

constexpr std::chrono::seconds kRequestTimeout{2};

} // namespace

std::unique_ptr<KeyMouseEventSource> createKeyMouseEventSource(KeyMouseEventSink &sink)
{
    return std::make_unique<X11EventSource>(sink);
}

X11EventSource::X11EventSource(KeyMouseEventSink &sink)
    : m_sink(sink)
    , m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

X11EventSource::~X11EventSource()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_quit = true;
        eventfd_write(m_wake, 1);
        if (m_recorder)
            m_recorder->interrupt(); // otherwise an unresponsive server would block the join
    }
    if (m_thread.joinable())
        m_thread.join();
    close(m_wake);
}

void X11EventSource::update()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (!m_running) {
        if (m_sink.wantedKinds() == 0) {
            m_warned = false;
            return;
        }
        if (m_thread.joinable())
            m_thread.join(); // returns at once, see markEnded()
        m_running = true;
        m_errorString.clear();
        m_thread = std::thread(&X11EventSource::run, this);
    }
    const unsigned request = ++m_requested;
    eventfd_write(m_wake, 1);
    if (m_thread.get_id() != std::this_thread::get_id())
        m_changed.wait_for(lock, kRequestTimeout, [&] { return !m_running || int(m_served - request) >= 0; });
}

QString X11EventSource::errorString() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_errorString;
}

void X11EventSource::run()
{
    X11InputRecorder recorder;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_recorder = &recorder;
    }
    if (recorder.open() && serveRequests(recorder))
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_warned && !m_quit)
        qCWarning(logInput, "[KelKeyMouseHook] keyboard and mouse cannot be monitored: %s",
                  qUtf8Printable(recorder.errorString()));
    m_warned = true;
    m_errorString = recorder.errorString();
    markEnded();
}

/// The thread's last action under the lock: whoever holds the lock afterwards may join the thread.
void X11EventSource::markEnded()
{
    m_recorder = nullptr;
    m_running = false;
    m_changed.notify_all();
}

bool X11EventSource::serveRequests(X11InputRecorder &recorder)
{
    X11InputMapper mapper(recorder.control());
    unsigned request = 0;
    while (const int kinds = beginRequest(request)) {
        if (!recorder.setRecorded(kinds & KelKeyMouseHook::Keyboard, kinds & KelKeyMouseHook::Mouse))
            return false;
        endRequest(request);
        if (!deliverUntilRequest(recorder, mapper))
            return false;
    }
    return true;
}

int X11EventSource::beginRequest(unsigned &number)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    eventfd_t requests;
    eventfd_read(m_wake, &requests);
    number = m_requested;
    const int kinds = m_quit ? 0 : m_sink.wantedKinds();
    if (kinds == 0) {
        // Decided under the lock: a later update() starts a new thread.
        m_warned = false;
        markEnded();
    }
    return kinds;
}

void X11EventSource::endRequest(unsigned number)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_served = number;
    m_changed.notify_all();
}

bool X11EventSource::deliverUntilRequest(X11InputRecorder &recorder, X11InputMapper &mapper)
{
    std::vector<X11InputEvent> events;
    bool hasNotifications = false;
    for (;;) {
        do {
            events.clear();
            if (!recorder.read(events))
                return false;
            if (hasNotifications || !events.empty())
                mapper.update();
            for (const X11InputEvent &event : events)
                mapper.deliver(event, m_sink);
            hasNotifications = mapper.processNotifications(); // received while the mapper was waiting for the server
        } while (hasNotifications);

        pollfd waits[] = {{recorder.dataDescriptor(), POLLIN, 0},
                          {xcb_get_file_descriptor(recorder.control()), POLLIN, 0},
                          {m_wake, POLLIN, 0}};
        poll(waits, std::size(waits), -1);
        if (waits[2].revents)
            return true;
        hasNotifications = waits[1].revents != 0;
    }
}

} // namespace kel
