#include "keymouse/evdev/WaylandKeymap.h"

#include <QDeadlineTimer>

#include <wayland-client.h>

#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace kel
{

namespace
{

constexpr int kStartTimeoutMs = 1000;
constexpr int kRoundTrips = 3; // the seat, its keyboard, the keymap

/// The text of a keymap that was passed as a file.
QByteArray readKeymap(int descriptor, std::uint32_t size)
{
    void *const memory = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (memory == MAP_FAILED)
        return {};
    const char *const text = static_cast<const char *>(memory);
    const QByteArray keymap(text, int(strnlen(text, size)));
    munmap(memory, size);
    return keymap;
}

} // namespace

struct WaylandKeymap::Listeners {
    static WaylandKeymap *self(void *data) { return static_cast<WaylandKeymap *>(data); }

    static void global(void *data, wl_registry *registry, std::uint32_t name, const char *interface, std::uint32_t)
    {
        if (self(data)->m_seat || std::strcmp(interface, wl_seat_interface.name) != 0)
            return;
        self(data)->m_seat = static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
        static const wl_seat_listener listener{capabilities, [](void *, wl_seat *, const char *) {}};
        wl_seat_add_listener(self(data)->m_seat, &listener, data);
    }
    static void capabilities(void *data, wl_seat *seat, std::uint32_t capabilities)
    {
        const bool hasKeyboard = capabilities & WL_SEAT_CAPABILITY_KEYBOARD;
        wl_keyboard *&keyboard = self(data)->m_keyboard;
        if (hasKeyboard && !keyboard) {
            keyboard = wl_seat_get_keyboard(seat);
            static const wl_keyboard_listener listener{
                keymap,
                [](void *, wl_keyboard *, std::uint32_t, wl_surface *, wl_array *) {},
                [](void *, wl_keyboard *, std::uint32_t, wl_surface *) {},
                [](void *, wl_keyboard *, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
                [](void *, wl_keyboard *, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t) {},
                [](void *, wl_keyboard *, std::int32_t, std::int32_t) {}};
            wl_keyboard_add_listener(keyboard, &listener, data);
        } else if (!hasKeyboard && keyboard) {
            wl_keyboard_destroy(std::exchange(keyboard, nullptr));
        }
    }
    static void awaitAnswers(WaylandKeymap *keymap)
    {
        static const wl_callback_listener listener{answered};
        wl_callback_add_listener(wl_display_sync(keymap->m_display), &listener, keymap);
    }
    static void answered(void *data, wl_callback *callback, std::uint32_t)
    {
        wl_callback_destroy(callback);
        if (++self(data)->m_roundTrips < kRoundTrips)
            awaitAnswers(self(data));
    }
    static void keymap(void *data, wl_keyboard *, std::uint32_t format, std::int32_t descriptor, std::uint32_t size)
    {
        if (format == WL_KEYBOARD_KEYMAP_FORMAT_XKB_V1)
            self(data)->m_keymap = readKeymap(descriptor, size);
        close(descriptor);
    }
};

WaylandKeymap::WaylandKeymap()
    : m_display(qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? nullptr : wl_display_connect(nullptr))
{
    if (!m_display)
        return;
    m_registry = wl_display_get_registry(m_display);
    static const wl_registry_listener listener{Listeners::global, [](void *, wl_registry *, std::uint32_t) {}};
    wl_registry_add_listener(m_registry, &listener, this);
    Listeners::awaitAnswers(this);
    wl_display_flush(m_display);
    const QDeadlineTimer limit(kStartTimeoutMs);
    while (m_display && m_roundTrips < kRoundTrips && !limit.hasExpired()) {
        pollfd wait{descriptor(), POLLIN, 0};
        poll(&wait, 1, int(limit.remainingTime()));
        process();
    }
}

WaylandKeymap::~WaylandKeymap()
{
    disconnect();
}

void WaylandKeymap::disconnect()
{
    if (m_keyboard)
        wl_keyboard_destroy(std::exchange(m_keyboard, nullptr));
    if (m_seat)
        wl_seat_destroy(std::exchange(m_seat, nullptr));
    if (m_registry)
        wl_registry_destroy(std::exchange(m_registry, nullptr));
    if (m_display)
        wl_display_disconnect(std::exchange(m_display, nullptr));
}

int WaylandKeymap::descriptor() const
{
    return m_display ? wl_display_get_fd(m_display) : -1;
}

void WaylandKeymap::process()
{
    if (!m_display)
        return;
    while (wl_display_prepare_read(m_display) != 0)
        wl_display_dispatch_pending(m_display);
    pollfd wait{descriptor(), POLLIN, 0};
    if (poll(&wait, 1, 0) > 0)
        wl_display_read_events(m_display);
    else
        wl_display_cancel_read(m_display);
    wl_display_dispatch_pending(m_display);
    wl_display_flush(m_display);
    if (wl_display_get_error(m_display) != 0)
        disconnect(); // the last keymap stays in use
}

QByteArray WaylandKeymap::takeKeymap()
{
    return std::exchange(m_keymap, {});
}

} // namespace kel
