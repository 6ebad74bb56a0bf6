#pragma once

#include <QString>

namespace kel
{

/// Renames a file on the same disk in one step, replacing an existing file, which QFile::rename() does not do: at every
/// moment `to` is either the old file or the complete new one. This process must not have either file open. Any thread.
/// Returns a null string on success, otherwise an error text; both files are then unchanged.
QString renameOver(const QString &from, const QString &to);

} // namespace kel
