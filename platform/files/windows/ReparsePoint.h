#pragma once

#include <QString>

#include <windows.h>

namespace kel
{

/// Whether an open handle is that of a symbolic link or a junction. Other reparse points are files and directories,
/// such as those of a cloud storage.
bool isLink(HANDLE file);

/// The same of what is at `path`; false if there is nothing.
bool isLinkAt(const QString &path);

} // namespace kel
