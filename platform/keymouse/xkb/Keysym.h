#pragma once

#include <cstdint>

namespace kel
{

/// The keysym of a Qt::Key without modifiers; 0 for keys that are not supported in shortcuts.
std::uint32_t keysymOf(int key);

} // namespace kel
