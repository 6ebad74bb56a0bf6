#pragma once

#include <QByteArray>
#include <QString>

class QFile;
class QIODevice;

namespace kel
{

/// Writes all of `bytes` to a device without a buffer. False when that fails, and the device then knows why: a disk
/// that fills up in the middle of them says nothing at first.
bool writeAll(QIODevice &device, const QByteArray &bytes);

enum class FileAccess {
    Ordinary, ///< what the process gives to new files
    OwnerOnly ///< nobody else reads it, from the moment at which it comes into being
};

/// Puts `bytes` into the file at `path`, in one step: whoever opens it finds the earlier content or the new one, whole.
/// An earlier file's access does not matter, and a link is replaced, not followed. No copy of `bytes` stays in memory.
/// False, and `error` says why in English, when that fails; an earlier file is then as it was. Who has that file open
/// passes it as `replaced`: it is closed in the last moment.
bool replaceFile(const QString &path, const QByteArray &bytes, FileAccess access, QString *error,
                 QFile *replaced = nullptr);

} // namespace kel
