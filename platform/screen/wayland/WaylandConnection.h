#pragma once

#include "screen/wayland/WaylandOutput.h"

#include <chrono>
#include <memory>
#include <vector>

namespace kel
{

/// An own connection to the compositor that $WAYLAND_DISPLAY names, with what screen capture uses. One thread at a
/// time, which also runs all callbacks.
class WaylandConnection
{
public:
    /// A compositor that has not answered for that long is stalled.
    static constexpr std::chrono::milliseconds kReplyTimeout{1000};

    /// Connects and waits, at most that long, until the compositor has described itself.
    WaylandConnection();
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection &) = delete;
    WaylandConnection &operator=(const WaylandConnection &) = delete;

    /// False when the connection failed, and permanently once the compositor is gone.
    bool isOpen() const;

    /// Whether it lets programs copy the screen.
    bool hasScreencopy() const { return m_screencopy && m_places && m_shm; }

    wl_shm *shm() const { return m_shm.get(); }
    zwlr_screencopy_manager_v1 *screencopy() const { return m_screencopy.get(); }
    /// Screens stay in the list, marked, when they are disconnected.
    const std::vector<std::unique_ptr<WaylandOutput>> &outputs() const { return m_outputs; }

    /// Sends all requests and runs the callbacks of all events, for which it waits until `limit` has passed or the
    /// descriptor `wake` is readable. Returns whether it was awakened.
    bool dispatch(std::chrono::milliseconds limit, int wake = -1);

    /// Asks for a sign of life and returns whether the one asked for before has come.
    bool ping();

private:
    static const wl_registry_listener kRegistryListener;
    static const wl_callback_listener kPongListener;

    void add(std::uint32_t name, const char *interface, std::uint32_t version);
    void remove(std::uint32_t name);
    bool roundTrip();

    WaylandPtr<wl_display> m_display; // first: it outlives all other objects
    WaylandPtr<wl_registry> m_registry;
    WaylandPtr<wl_callback> m_pong; // null when it has come
    WaylandPtr<wl_shm> m_shm;
    WaylandPtr<zxdg_output_manager_v1> m_places;
    WaylandPtr<zwlr_screencopy_manager_v1> m_screencopy;
    std::vector<std::unique_ptr<WaylandOutput>> m_outputs;
};

} // namespace kel
