#pragma once

#include "keymouse/KeyMouseEventSource.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace kel
{

class X11InputMapper;
class X11InputRecorder;

/// Input of the X display, read on a thread that exists while some hook is installed.
class X11EventSource final : public KeyMouseEventSource
{
public:
    explicit X11EventSource(KeyMouseEventSink &sink);
    ~X11EventSource() override;

    void update() override;
    QString errorString() const override;

private:
    void run();
    void markEnded();
    bool serveRequests(X11InputRecorder &recorder);
    bool deliverUntilRequest(X11InputRecorder &recorder, X11InputMapper &mapper);
    int beginRequest(unsigned &number);
    void endRequest(unsigned number);

    KeyMouseEventSink &m_sink;
    const int m_wake; // eventfd, readable when there is a request

    mutable std::mutex m_mutex; // guards the members below; acquired before the sink's
    std::condition_variable m_changed;
    std::thread m_thread;
    X11InputRecorder *m_recorder = nullptr; // set while the thread uses it
    unsigned m_requested = 0;               // number of the last request
    unsigned m_served = 0;                  // number of the last completed request
    bool m_running = false;                 // false once the thread is about to end
    bool m_quit = false;
    bool m_warned = false;
    QString m_errorString;
};

} // namespace kel
