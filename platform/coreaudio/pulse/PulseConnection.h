#pragma once

#include <pulse/pulseaudio.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kel
{

/// A connection to the sound server with a thread of its own, on which all callbacks run. Any thread.
class PulseConnection
{
public:
    /// Holds the connection's lock: whoever calls the server's library does so under it.
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

    /// Where sound can be recorded.
    struct Source {
        std::string name;
        pa_sample_spec format;
        pa_channel_map channels;
    };

    /// Null when no server answers within seconds.
    static std::shared_ptr<PulseConnection> open();

    ~PulseConnection();
    PulseConnection(const PulseConnection &) = delete;
    PulseConnection &operator=(const PulseConnection &) = delete;

    /// What the default output plays. It is named by way of the output: the server's own alias for it means, on some
    /// servers, something else.
    std::optional<Source> defaultMonitor() const;

    /// The default input; none when that only hears the default output, which is what the server falls back to on a
    /// machine without a microphone.
    std::optional<Source> defaultMicrophone() const;

    pa_context *context() const { return m_context; }

    /// Lets callbacks run until `isDone`, which they make true and tell by signal(). Under a Lock; false when it took
    /// too long or the connection broke.
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
