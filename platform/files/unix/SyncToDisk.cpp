#include "files/SyncToDisk.h"

#include "files/unix/Descriptor.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace kel
{

namespace
{
QString sync(const QString &path, int flags, int (*synchronize)(int))
{
    const Descriptor file(
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | flags));
    if (!file.isValid())
        return qt_error_string();
    // A file system that knows no such call is no failure.
    const bool isDone = synchronize(file.get()) == 0 || errno == EINVAL || errno == ENOTSUP;
    return isDone ? QString() : qt_error_string();
}
} // namespace

QString syncFile(const QString &path)
{
    return sync(path, 0, fdatasync);
}

QString syncDirectory(const QString &path)
{
    return sync(path, O_DIRECTORY, fsync);
}

} // namespace kel
