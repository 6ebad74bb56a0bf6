#include "files/PrivateFile.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

/// The descriptor of the file; −1 with `error` on failure.
int openDescriptor(const QString &path, QIODevice::OpenMode mode, QString *error)
{
    const QFileInfo info(path);
    const QByteArray directoryName = QFile::encodeName(info.path());
    const QByteArray name = QFile::encodeName(info.fileName());
    const int directory = ::open(directoryName.constData(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (directory < 0) {
        *error = QStringLiteral("%1: %2").arg(info.path(), reason(AT_FDCWD, directoryName.constData()));
        return -1;
    }
    int file = -1;
    struct stat status;
    const bool exists = fstatat(directory, name.constData(), &status, AT_SYMLINK_NOFOLLOW) == 0;
    if (exists && S_ISLNK(status.st_mode)) {
        *error = QStringLiteral("It is a link");
    } else if (exists && !S_ISREG(status.st_mode)) {
        *error = QStringLiteral("It is not an ordinary file");
    } else {
        if (exists && (mode & QIODevice::Truncate))
            unlinkat(directory, name.constData(), 0);
        // Another process may put something in its place at any moment, so the system has to refuse it as well.
        const int access = (mode & QIODevice::ReadOnly) ? O_RDWR : O_WRONLY;
        const int creation = (mode & QIODevice::ExistingOnly) ? 0 : O_CREAT | O_EXCL;
        file = openat(directory, name.constData(), access | creation | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC,
                      S_IRUSR | S_IWUSR);
        if (file < 0)
            *error = reason(directory, name.constData());
    }
    ::close(directory);
    return file;
}
} // namespace

bool PrivateFile::open(OpenMode mode)
{
    QString error;
    const int file = openDescriptor(m_path, mode, &error);
    if (file < 0)
        return fail(error);
    return QFile::open(file, mode & ~(Truncate | NewOnly | ExistingOnly), AutoCloseHandle);
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
