#pragma once

#include <cstdint>
#include <vector>

struct xcb_connection_t;

namespace kel
{

/// What the buttons of the pointer mean: the X server records the numbers of the hardware, and people exchange buttons
/// (for the left hand) or reverse the wheel.
class X11ButtonMap
{
public:
    /// Reads the map through a connection of the caller.
    void load(xcb_connection_t *connection);

    /// The button that programs see for a button of the hardware; 0 for one that is switched off.
    int logical(std::uint8_t button) const;

private:
    std::vector<std::uint8_t> m_map;
};

} // namespace kel
