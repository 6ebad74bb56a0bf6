#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace kel
{

/// Creates a file for its owner only, in place of an earlier one or a link. Returns a null string on success, otherwise
/// an error text in English; there is no file then.
QString createFile(const QString &path, const QByteArray &bytes);

/// Renames a file over another one, as renameOver(), but refuses a link and deletes the file if that fails.
QString moveIntoPlace(const QString &from, const QString &to);

/// Replaces the content of the file at `path` by `bytes` in one step: readers find the earlier content or the new one,
/// each complete. The new file is readable by its owner only. A link is refused. No copy of `bytes` stays in memory.
/// False when that fails; `error`, unless null, then says why in English, and an earlier file is unchanged. If the
/// caller has that file open, it passes it as `replaced`, which is closed just before it is replaced.
bool replaceFile(const QString &path, const QByteArray &bytes, QString *error, QFile *replaced = nullptr);

} // namespace kel
