#pragma once

#include <wayland-client.h>
#include <wlr-screencopy-unstable-v1.h>
#include <xdg-output-unstable-v1.h>

#include <memory>

namespace kel
{

struct WaylandDestroy {
    void operator()(wl_display *display) const { wl_display_disconnect(display); }
    void operator()(wl_registry *registry) const { wl_registry_destroy(registry); }
    void operator()(wl_callback *callback) const { wl_callback_destroy(callback); }
    void operator()(wl_output *output) const { wl_output_destroy(output); }
    void operator()(wl_shm *shm) const { wl_shm_destroy(shm); }
    void operator()(wl_shm_pool *pool) const { wl_shm_pool_destroy(pool); }
    void operator()(wl_buffer *buffer) const { wl_buffer_destroy(buffer); }
    void operator()(zxdg_output_manager_v1 *manager) const { zxdg_output_manager_v1_destroy(manager); }
    void operator()(zxdg_output_v1 *output) const { zxdg_output_v1_destroy(output); }
    void operator()(zwlr_screencopy_manager_v1 *manager) const { zwlr_screencopy_manager_v1_destroy(manager); }
    void operator()(zwlr_screencopy_frame_v1 *frame) const { zwlr_screencopy_frame_v1_destroy(frame); }
};

/// An object of the Wayland protocol, or the connection.
template <typename T>
using WaylandPtr = std::unique_ptr<T, WaylandDestroy>;

} // namespace kel
