#pragma once

#include <array>
#include <bitset>

#include <windows.h>

namespace kel
{

/// The virtual keys that modify others.
inline constexpr std::array<BYTE, 8> kModifierKeys{VK_LSHIFT, VK_RSHIFT, VK_LCONTROL, VK_RCONTROL,
                                                   VK_LMENU,  VK_RMENU,  VK_LWIN,     VK_RWIN};
/// A set of kModifierKeys.
using ModifierKeySet = std::bitset<kModifierKeys.size()>;

/// The Qt::Key of a virtual key that types no character and so is the same in every layout; 0 for others.
int qtKeyOf(DWORD virtualKey);

/// The virtual key of a Qt::Key; 0 for characters and for keys without a virtual key.
DWORD virtualKeyOf(int key);

} // namespace kel
