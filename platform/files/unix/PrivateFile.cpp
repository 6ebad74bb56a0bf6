#include "files/PrivateFile.h"

#include "files/unix/Descriptor.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

namespace kel
{

namespace
{
/// The reason for a failure of the last call on `name` in `directory`.
QString reason(int directory, const char *name)
{
    const int error = errno;
    struct stat status;
    if (fstatat(directory, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(status.st_mode))
        return QStringLiteral("It is a link");
    return qt_error_string(error);
}

/// Invalid, with `error`, on failure.
Descriptor openDescriptor(const QString &path, QIODevice::OpenMode mode, QString *error)
{
    const QFileInfo info(path);
    const QByteArray directoryName = QFile::encodeName(info.path());
    const QByteArray name = QFile::encodeName(info.fileName());
    const Descriptor directory(::open(directoryName.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!directory.isValid()) {
        *error = QStringLiteral("%1: %2").arg(info.path(), reason(AT_FDCWD, directoryName.constData()));
        return Descriptor();
    }
    struct stat status;
    const bool exists = fstatat(directory.get(), name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        *error =
            S_ISLNK(status.st_mode) ? QStringLiteral("It is a link") : QStringLiteral("It is not an ordinary file");
        return Descriptor();
    }
    if (exists && (mode & QIODevice::Truncate))
        unlinkat(directory.get(), name.constData(), 0);
    // Another process may put something in its place at any moment, so the system has to refuse it as well.
    const int access = (mode & QIODevice::ReadOnly) ? O_RDWR : O_WRONLY;
    const int creation = (mode & QIODevice::ExistingOnly) ? 0 : O_CREAT | O_EXCL;
    Descriptor file(openat(directory.get(), name.constData(), access | creation | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                           S_IRUSR | S_IWUSR));
    if (!file.isValid())
        *error = reason(directory.get(), name.constData());
    return file;
}
} // namespace

bool PrivateFile::open(OpenMode mode)
{
    QString error;
    Descriptor file = openDescriptor(m_path, mode, &error);
    if (!file.isValid())
        return fail(error);
    return QFile::open(file.release(), mode & ~(Truncate | NewOnly | ExistingOnly), AutoCloseHandle);
}

QString makePrivateDirectory(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    const QByteArray name = QFile::encodeName(path);
    if (mkdir(name.constData(), S_IRWXU) == 0)
        return {};
    struct stat status;
    if (errno == EEXIST && lstat(name.constData(), &status) == 0 && S_ISDIR(status.st_mode))
        return {};
    return reason(AT_FDCWD, name.constData());
}

} // namespace kel
