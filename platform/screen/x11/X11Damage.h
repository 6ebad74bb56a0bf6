#pragma once

#include "screen/x11/XcbConnection.h"

#include <QRegion>

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <optional>

namespace kel
{

/// Watches which parts of the root window, with all windows on it, are drawn to.
///
/// The server sends one event when its record of damage stops being empty, and goes on recording in silence until that
/// record is taken. Nothing is lost between taking and reading pixels: what is drawn in between is recorded anew.
class X11Damage
{
public:
    explicit X11Damage(XcbConnection &connection);

    /// False on a server that cannot tell what was drawn.
    bool isAvailable() const { return m_damage != XCB_NONE; }

    /// The event says that there is something to take.
    bool isNotify(const xcb_generic_event_t &event) const;

    /// Takes the record, in pixels of the root window. Nothing when the server does not answer: the record is lost
    /// then.
    std::optional<QRegion> take();

    /// Empties the record unseen. Does not wait for the server.
    void clear();

private:
    XcbConnection &m_connection;
    xcb_damage_damage_t m_damage = XCB_NONE;
    xcb_xfixes_region_t m_region = XCB_NONE;
    int m_firstEvent = 0;
};

} // namespace kel
