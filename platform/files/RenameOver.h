#pragma once

#include <QString>

namespace kel
{

/// Gives a file another name on the same disk in one step, which QFile::rename() does not do over a file that is there:
/// under the name `to` there is at every moment what was there before, or all of `from`. Nobody of this process may
/// have either file open. Any thread.
/// Answers a null string, or why it failed; both files are then as they were.
QString renameOver(const QString &from, const QString &to);

} // namespace kel
