#pragma once

#include <QString>

class QFile;

namespace kel
{

/// Opens the file at `name`, relative to the directory `root`, for reading, although whoever filled that directory is
/// not trusted: the file has to be an ordinary one, so that opening and reading it cannot block, and no component of
/// `name` may be a link, so that nothing outside of `root` is read. `root` itself may be a link. Any thread.
/// Returns a null string on success, otherwise an error text. `file`, which must not be open, does not know its name.
QString openInside(QFile *file, const QString &root, const QString &name);

} // namespace kel
