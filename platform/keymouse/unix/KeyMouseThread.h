#pragma once

#include "keymouse/KeyMouseEventSource.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

namespace kel
{

class NativeEventSource;

/// Reads a native source on a thread that exists while some hook is installed.
class KeyMouseThread final : public KeyMouseEventSource
{
public:
    /// Each thread asks `create` for its source.
    KeyMouseThread(KeyMouseEventSink &sink, std::function<std::unique_ptr<NativeEventSource>()> create);
    ~KeyMouseThread() override;

    void update() override;
    QString errorString() const override;

private:
    void run();
    void markEnded();
    bool serveRequests(NativeEventSource &source);
    int beginRequest(unsigned &number);
    void endRequest(unsigned number);

    KeyMouseEventSink &m_sink;
    const std::function<std::unique_ptr<NativeEventSource>()> m_create;
    const int m_wake; // eventfd, readable when there is a request

    mutable std::mutex m_mutex; // guards the members below; acquired before the sink's
    std::condition_variable m_changed;
    std::thread m_thread;
    NativeEventSource *m_source = nullptr; // set while the thread uses it
    unsigned m_requested = 0;              // number of the last request
    unsigned m_served = 0;                 // number of the last completed request
    bool m_running = false;                // false once the thread is about to end
    bool m_quit = false;
    bool m_warned = false;
    QString m_errorString;
};

} // namespace kel
