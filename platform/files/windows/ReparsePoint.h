#pragma once

#include <windows.h>

namespace kel
{

/// Whether an open handle is that of a symbolic link or a junction. Other reparse points are files and directories,
/// such as those of a cloud storage.
bool isLink(HANDLE file);

} // namespace kel
