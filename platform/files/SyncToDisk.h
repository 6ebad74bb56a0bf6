#pragma once

#include <QString>

namespace kel
{

/// Returns when the content of the file is on the disk itself, where it survives a power failure. Can take seconds.
/// A link is refused. Returns a null string on success, otherwise an error text. Any thread.
QString syncFile(const QString &path);

/// The same for the names in a directory: of files that were created, renamed or deleted there. Does nothing on systems
/// whose directories need no such call (Windows).
QString syncDirectory(const QString &path);

} // namespace kel
