#include "keymouse/unix/KeyMouseThread.h"

#include "keymouse/unix/NativeEventSource.h"
#include "logging/PlatformLog.h"

#include <QDebug>

#include <sys/eventfd.h>
#include <unistd.h>

#include <chrono>
#include <utility>

namespace kel
{

namespace
{

constexpr std::chrono::seconds kRequestTimeout{2};

} // namespace

KeyMouseThread::KeyMouseThread(KeyMouseEventSink &sink, std::function<std::unique_ptr<NativeEventSource>()> create)
    : m_sink(sink)
    , m_create(std::move(create))
    , m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
}

KeyMouseThread::~KeyMouseThread()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_quit = true;
        eventfd_write(m_wake, 1);
        if (m_source)
            m_source->interrupt(); // otherwise an unresponsive server would block the join
    }
    if (m_thread.joinable())
        m_thread.join();
    close(m_wake);
}

void KeyMouseThread::update()
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
        m_thread = std::thread(&KeyMouseThread::run, this);
    }
    const unsigned request = ++m_requested;
    eventfd_write(m_wake, 1);
    if (m_thread.get_id() != std::this_thread::get_id())
        m_changed.wait_for(lock, kRequestTimeout, [&] { return !m_running || int(m_served - request) >= 0; });
}

QString KeyMouseThread::errorString() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_errorString;
}

void KeyMouseThread::run()
{
    const std::unique_ptr<NativeEventSource> source = m_create();
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_source = source.get();
    }
    if (source->open() && serveRequests(*source))
        return;
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_warned && !m_quit)
        qCWarning(logInput, "[KelKeyMouseHook] keyboard and mouse cannot be monitored: %s",
                  qUtf8Printable(source->errorString()));
    m_warned = true;
    m_errorString = source->errorString();
    markEnded();
}

/// The thread's last action under the lock: whoever holds the lock afterwards may join the thread.
void KeyMouseThread::markEnded()
{
    m_source = nullptr;
    m_running = false;
    m_changed.notify_all();
}

bool KeyMouseThread::serveRequests(NativeEventSource &source)
{
    unsigned request = 0;
    while (const int kinds = beginRequest(request)) {
        if (!source.watch(kinds))
            return false;
        endRequest(request);
        if (!source.deliverUntil(m_wake, m_sink))
            return false;
    }
    return true;
}

int KeyMouseThread::beginRequest(unsigned &number)
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

void KeyMouseThread::endRequest(unsigned number)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_served = number;
    m_changed.notify_all();
}

} // namespace kel
