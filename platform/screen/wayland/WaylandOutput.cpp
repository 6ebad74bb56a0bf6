#include "screen/wayland/WaylandOutput.h"

namespace kel
{

namespace
{

WaylandOutput &self(void *data)
{
    return *static_cast<WaylandOutput *>(data);
}

} // namespace

// The compositor's library ends the process over an event without a function.
const wl_output_listener WaylandOutput::kOutputListener = {
    /* geometry */ [](void *data, wl_output *, int, int, int, int, int, const char *, const char *, int transform) {
        self(data).m_transform = transform;
    },
    /* mode */ [](void *, wl_output *, std::uint32_t, int, int, int) {},
    /* done */ [](void *, wl_output *) {},
    /* scale */ [](void *, wl_output *, int) {},
    /* name */ [](void *, wl_output *, const char *) {},
    /* description */ [](void *, wl_output *, const char *) {},
};

const zxdg_output_v1_listener WaylandOutput::kPlaceListener = {
    /* logical_position */ [](void *data, zxdg_output_v1 *, int x, int y) { self(data).m_geometry.moveTo(x, y); },
    /* logical_size */
    [](void *data, zxdg_output_v1 *, int width, int height) {
        self(data).m_geometry.setSize({width, height});
    },
    /* done */ [](void *, zxdg_output_v1 *) {},
    /* name */ [](void *, zxdg_output_v1 *, const char *) {},
    /* description */ [](void *, zxdg_output_v1 *, const char *) {},
};

WaylandOutput::WaylandOutput(wl_registry *registry, std::uint32_t name)
    : m_name(name)
    , m_output(static_cast<wl_output *>(wl_registry_bind(registry, name, &wl_output_interface, 1)))
{
    wl_output_add_listener(m_output.get(), &kOutputListener, this);
}

void WaylandOutput::queryPlace(zxdg_output_manager_v1 *manager)
{
    m_place.reset(zxdg_output_manager_v1_get_xdg_output(manager, m_output.get()));
    zxdg_output_v1_add_listener(m_place.get(), &kPlaceListener, this);
}

} // namespace kel
