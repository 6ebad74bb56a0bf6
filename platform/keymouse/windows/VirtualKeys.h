#pragma once

#include <windows.h>

namespace kel
{

/// The Qt::Key of a virtual key that types no character and so is the same in every layout; 0 for others.
int qtKeyOf(DWORD virtualKey);

/// The virtual key of a Qt::Key; 0 for characters and for keys without a virtual key.
DWORD virtualKeyOf(int key);

} // namespace kel
