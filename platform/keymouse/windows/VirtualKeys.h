#pragma once

#include <windows.h>

namespace kel
{

/// The Qt::Key of a virtual key that is the same in every layout, because it types no character; 0 for others.
int qtKeyOf(DWORD virtualKey);

/// The other way round; 0 for a Qt::Key that is a character or on no keyboard.
DWORD virtualKeyOf(int key);

} // namespace kel
