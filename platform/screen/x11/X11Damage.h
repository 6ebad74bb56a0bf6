#pragma once

#include "screen/x11/XcbConnection.h"

#include <QRegion>

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <optional>

namespace kel
{

/// Tracks which parts of the root window, including all windows on it, are drawn to.
///
/// The server sends one event when its damage record becomes non-empty, and silently continues recording until the
/// record is taken. Nothing is lost between taking the record and reading pixels: drawing in between is recorded again.
class X11Damage
{
public:
    explicit X11Damage(XcbConnection &connection);

    /// False when the server does not support damage tracking.
    bool isAvailable() const { return m_damage != XCB_NONE; }

    /// True for the event that announces damage.
    bool isNotify(const xcb_generic_event_t &event) const;

    /// Takes the record, in pixels of the root window. Empty when the server does not respond; the record is then lost.
    std::optional<QRegion> take();

    /// Discards the record without waiting for the server.
    void clear();

private:
    XcbConnection &m_connection;
    xcb_damage_damage_t m_damage = XCB_NONE;
    xcb_xfixes_region_t m_region = XCB_NONE;
    int m_firstEvent = 0;
};

} // namespace kel
