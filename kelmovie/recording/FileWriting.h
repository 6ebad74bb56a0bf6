#pragma once

#include <QByteArray>
#include <QString>

class QFile;
class QIODevice;

namespace kel
{

/// Writes all of `bytes` to an unbuffered device. False when that fails; the device then has the error. Writes the rest
/// after a partial write, because a disk that fills up reports its error only with the next write.
bool writeAll(QIODevice &device, const QByteArray &bytes);

enum class FileAccess {
    Ordinary, ///< the process's default permissions
    OwnerOnly ///< readable by nobody else, from the moment it is created
};

/// Replaces the content of the file at `path` by `bytes` in one step: readers find the earlier content or the new one,
/// each complete. The permissions of an earlier file are not kept, and a link is replaced, not followed. No copy of
/// `bytes` stays in memory. False when that fails; `error`, unless null, then says why in English, and an earlier file
/// is unchanged. If the caller has that file open, it passes it as `replaced`, which is closed just before it is
/// replaced.
bool replaceFile(const QString &path, const QByteArray &bytes, FileAccess access, QString *error,
                 QFile *replaced = nullptr);

} // namespace kel
