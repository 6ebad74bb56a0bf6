#include "files/SyncToDisk.h"

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
    const int file =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC | flags);
    if (file < 0)
        return qt_error_string();
    // A file system that knows no such call is no failure.
    const bool isDone = synchronize(file) == 0 || errno == EINVAL || errno == ENOTSUP;
    const QString problem = isDone ? QString() : qt_error_string();
    ::close(file);
    return problem;
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
