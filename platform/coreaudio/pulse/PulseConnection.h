#pragma once

#include <pulse/pulseaudio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kel
{

/// A connection to the sound server with its own thread, on which all callbacks run. Any thread.
class PulseConnection
{
public:
    /// Holds the connection's lock, which every call of the server's client library requires.
    class Lock
    {
    public:
        explicit Lock(const PulseConnection &connection)
            : m_loop(connection.m_loop)
        {
            pa_threaded_mainloop_lock(m_loop);
        }
        ~Lock() { pa_threaded_mainloop_unlock(m_loop); }
        Lock(const Lock &) = delete;
        Lock &operator=(const Lock &) = delete;

    private:
        pa_threaded_mainloop *const m_loop;
    };

    /// A source that can be recorded.
    struct Source {
        std::string name;
        pa_sample_spec format;
        pa_channel_map channels;
        std::string sink; ///< the output whose sound a source without an own device provides; empty for other sources
    };

    /// Null when no server responds within a few seconds.
    static std::shared_ptr<PulseConnection> open();

    ~PulseConnection();
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;

    /// The monitor of the default output. It is looked up by the name of the output, because the server's alias for it
    /// means something else on some servers.
    std::optional<Source> defaultMonitor() const;

    /// The default input. None when it is the monitor of the default output, which is the fallback of the server on a
    /// machine without a microphone.
    std::optional<Source> defaultMicrophone() const;

    pa_context *context() const { return m_context; }

    /// Runs callbacks until `isDone` returns true; callbacks that change its result call signal(). Requires a Lock.
    /// False after a timeout or when the connection is lost.
    bool wait(const std::function<bool()> &isDone) const;
    void signal() const { pa_threaded_mainloop_signal(m_loop, 0); }

private:
    PulseConnection() = default;
    bool connect();
    bool isAlive() const;
    bool finish(pa_operation *operation) const;

    struct Defaults {
        std::string sink;
        std::string source;
    };
    Defaults defaults() const;

    pa_threaded_mainloop *m_loop = nullptr;
    pa_context *m_context = nullptr;
};

} // namespace kel
