#pragma once

#include <cstdint>
#include <vector>

struct xcb_connection_t;

namespace kel
{

/// Maps physical to logical buttons: the X server records physical button numbers, but users may swap buttons
/// (for left-handed use) or reverse the wheel.
class X11ButtonMap
{
public:
    /// Reads the map through a connection that belongs to the caller.
    void load(xcb_connection_t *connection);

    /// The logical number of a physical button; 0 when it is disabled.
    int logicalButton(std::uint8_t button) const;

private:
    std::vector<std::uint8_t> m_map;
};

} // namespace kel
