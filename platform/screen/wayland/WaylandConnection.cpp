#include "screen/wayland/WaylandConnection.h"

#include <QDeadlineTimer>

#include <algorithm>
#include <cstring>

#include <poll.h>

namespace kel
{

namespace
{

constexpr std::uint32_t kScreencopyMinVersion = 2; // reports damage
constexpr std::uint32_t kScreencopyVersion = 3;

template <typename T>
void bindGlobal(WaylandPtr<T> &object, wl_registry *registry, std::uint32_t name, const wl_interface &interface,
                std::uint32_t version)
{
    object.reset(static_cast<T *>(wl_registry_bind(registry, name, &interface, version)));
}

WaylandConnection &self(void *data)
{
    return *static_cast<WaylandConnection *>(data);
}

} // namespace

const wl_registry_listener WaylandConnection::kRegistryListener = {
    [](void *data, wl_registry *, std::uint32_t name, const char *interface, std::uint32_t version) {
        self(data).add(name, interface, version);
    },
    [](void *data, wl_registry *, std::uint32_t name) { self(data).remove(name); },
};

const wl_callback_listener WaylandConnection::kPongListener = {
    [](void *data, wl_callback *, std::uint32_t) { self(data).m_pong.reset(); },
};

WaylandConnection::WaylandConnection()
    : m_display(wl_display_connect(nullptr))
{
    if (!m_display)
        return;
    m_registry.reset(wl_display_get_registry(m_display.get()));
    wl_registry_add_listener(m_registry.get(), &kRegistryListener, this);
    if (!roundTrip() || !m_places)
        return;
    for (const auto &output : m_outputs)
        output->queryPlace(m_places.get());
    roundTrip();
}

WaylandConnection::~WaylandConnection() = default;

bool WaylandConnection::isOpen() const
{
    return m_display && wl_display_get_error(m_display.get()) == 0;
}

bool WaylandConnection::dispatch(std::chrono::milliseconds limit, int wake)
{
    wl_display *const display = m_display.get();
    while (wl_display_prepare_read(display) != 0)
        wl_display_dispatch_pending(display);
    // What a full socket cannot take now is sent after the next event.
    wl_display_flush(display);
    pollfd sources[] = {{wl_display_get_fd(display), POLLIN, 0}, {wake, POLLIN, 0}};
    if (poll(sources, 2, int(limit.count())) > 0 && sources[0].revents)
        wl_display_read_events(display);
    else
        wl_display_cancel_read(display);
    wl_display_dispatch_pending(display);
    return sources[1].revents;
}

bool WaylandConnection::ping()
{
    if (m_pong)
        return false;
    m_pong.reset(wl_display_sync(m_display.get()));
    wl_callback_add_listener(m_pong.get(), &kPongListener, this);
    return true;
}

/// False when the compositor has not answered in time.
bool WaylandConnection::roundTrip()
{
    ping();
    QDeadlineTimer deadline(kReplyTimeout);
    while (m_pong && isOpen() && !deadline.hasExpired())
        dispatch(std::chrono::milliseconds(deadline.remainingTime()));
    return !m_pong;
}

void WaylandConnection::add(std::uint32_t name, const char *interface, std::uint32_t version)
{
    const auto is = [&](const wl_interface &known) { return std::strcmp(interface, known.name) == 0; };
    wl_registry *const registry = m_registry.get();
    if (is(wl_shm_interface))
        bindGlobal(m_shm, registry, name, wl_shm_interface, 1);
    else if (is(zxdg_output_manager_v1_interface))
        bindGlobal(m_places, registry, name, zxdg_output_manager_v1_interface, 1);
    else if (is(zwlr_screencopy_manager_v1_interface) && version >= kScreencopyMinVersion)
        bindGlobal(m_screencopy, registry, name, zwlr_screencopy_manager_v1_interface,
                   std::min(version, kScreencopyVersion));
    else if (is(wl_output_interface))
        m_outputs.push_back(std::make_unique<WaylandOutput>(registry, name));
}

void WaylandConnection::remove(std::uint32_t name)
{
    for (const auto &output : m_outputs) {
        if (output->name() == name)
            output->setDisconnected();
    }
}

} // namespace kel
