#include "files/OpenInside.h"

#include "files/unix/Descriptor.h"

#include <QFile>
#include <QStringList>

#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace kel
{

namespace
{
constexpr int kFlags = O_RDONLY | O_CLOEXEC;
// A pipe would block the open, and a terminal could become the one of this process.
constexpr int kUntrustedFlags = kFlags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;

QString notOrdinary(const QString &name)
{
    return QStringLiteral("%1 is not an ordinary file").arg(name);
}

/// Why `name` in the directory `dir` could not be opened, after which errno is set.
QString openProblem(const Descriptor &dir, const QString &name, const QByteArray &encodedName)
{
    const QString error = qt_error_string();
    struct stat status;
    if (::fstatat(dir.get(), encodedName.constData(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return error;
    if (S_ISLNK(status.st_mode))
        return QStringLiteral("%1 is a link").arg(name);
    return S_ISSOCK(status.st_mode) ? notOrdinary(name) : error;
}

/// Replaces the directory by what is called `name` in it.
QString enter(Descriptor *dir, const QString &name, int flags)
{
    if (name == QLatin1String("..") || name.contains(QChar::Null)) // the system reads a name up to its first null
        return QStringLiteral("%1 is not a name in the directory").arg(name);
    const QByteArray encodedName = QFile::encodeName(name);
    Descriptor opened(::openat(dir->get(), encodedName.constData(), kUntrustedFlags | flags));
    if (!opened.isValid())
        return openProblem(*dir, name, encodedName);
    *dir = std::move(opened);
    return QString();
}

} // namespace

QString openInside(QFile *file, const QString &root, const QString &name)
{
    Descriptor current(::open(QFile::encodeName(root).constData(), kFlags | O_DIRECTORY));
    if (!current.isValid())
        return qt_error_string();
    QStringList dirs = name.split(QLatin1Char('/'));
    const QString fileName = dirs.takeLast();
    for (const QString &dir : qAsConst(dirs)) {
        const QString problem = enter(&current, dir, O_DIRECTORY);
        if (!problem.isEmpty())
            return problem;
    }
    const QString problem = enter(&current, fileName, 0);
    if (!problem.isEmpty())
        return problem;
    struct stat status;
    if (::fstat(current.get(), &status) != 0)
        return qt_error_string();
    if (!S_ISREG(status.st_mode))
        return notOrdinary(fileName);
    return file->open(current.release(), QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ? QString()
                                                                                            : file->errorString();
}

} // namespace kel
