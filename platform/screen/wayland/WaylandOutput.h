#pragma once

#include "screen/wayland/WaylandPtr.h"

#include <QRect>

#include <cstdint>

namespace kel
{

/// A screen of the compositor.
class WaylandOutput
{
public:
    WaylandOutput(wl_registry *registry, std::uint32_t name);
    WaylandOutput(const WaylandOutput &) = delete;
    WaylandOutput &operator=(const WaylandOutput &) = delete;

    /// Requests the place on the desktop.
    void queryPlace(zxdg_output_manager_v1 *manager);

    /// Of the global object.
    std::uint32_t name() const { return m_name; }
    wl_output *output() const { return m_output.get(); }

    /// In logical pixels of the desktop.
    QRect geometry() const { return m_geometry; }
    /// How frames are turned: a wl_output_transform.
    int transform() const { return m_transform; }

    /// False once it is disconnected.
    bool isConnected() const { return m_isConnected; }
    void setDisconnected() { m_isConnected = false; }

private:
    static const wl_output_listener kOutputListener;
    static const zxdg_output_v1_listener kPlaceListener;

    const std::uint32_t m_name;
    WaylandPtr<wl_output> m_output;
    WaylandPtr<zxdg_output_v1> m_place;
    QRect m_geometry;
    int m_transform = WL_OUTPUT_TRANSFORM_NORMAL;
    bool m_isConnected = true;
};

} // namespace kel
