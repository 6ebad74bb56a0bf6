#include "files/FileLock.h"

#include "files/unix/Descriptor.h"

#include <QFile>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kel
{

namespace
{
constexpr int kMaxAttempts = 10;
// A pipe or a device in place of the file must not block.
constexpr int kOpenFlags = O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;

/// The whole file. Locks of open file descriptions can be examined without being taken, and closing another descriptor
/// of the file does not release them.
struct flock wholeFile()
{
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    return range;
}

bool isOrdinaryFile(const Descriptor &file)
{
    struct stat status;
    return fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode);
}

/// Whether `path` still leads to the open file: the holder before may have deleted it after it was opened here.
bool isAt(const QByteArray &path, const Descriptor &file)
{
    struct stat here;
    struct stat there;
    return fstat(file.get(), &here) == 0 && lstat(path.constData(), &there) == 0 && here.st_dev == there.st_dev &&
           here.st_ino == there.st_ino;
}
} // namespace

class FileLock::Private
{
public:
    QByteArray path;
    Descriptor file;
};

FileLock::FileLock()
    : d(std::make_unique<Private>())
{
}

FileLock::~FileLock()
{
    release();
}

FileLock::Result FileLock::acquire(const QString &path)
{
    release();
    const QByteArray name = QFile::encodeName(path);
    for (int attempt = 0; attempt < kMaxAttempts; ++attempt) {
        Descriptor file(::open(name.constData(), O_RDWR | O_CREAT | kOpenFlags, S_IRUSR | S_IWUSR));
        if (!file.isValid()) {
            m_error = errno == ELOOP ? QStringLiteral("It is a link") : qt_error_string();
            return Result::Failed;
        }
        if (!isOrdinaryFile(file)) {
            m_error = QStringLiteral("It is not an ordinary file");
            return Result::Failed;
        }
        struct flock range = wholeFile();
        if (fcntl(file.get(), F_OFD_SETLK, &range) != 0) {
            if (errno == EAGAIN || errno == EACCES)
                return Result::HeldElsewhere;
            ::unlink(name.constData());
            return Result::NotSupported;
        }
        if (isAt(name, file)) {
            d->path = name;
            d->file = std::move(file);
            return Result::Acquired;
        }
    }
    m_error = QStringLiteral("Others keep replacing it");
    return Result::Failed;
}

void FileLock::release()
{
    const Descriptor file = std::exchange(d->file, Descriptor());
    if (file.isValid() && isAt(d->path, file)) // the directory may have been renamed, and another one put in its place
        ::unlink(d->path.constData());
}

FileLock::State FileLock::stateOf(const QString &path)
{
    const Descriptor file(::open(QFile::encodeName(path).constData(), O_RDONLY | kOpenFlags));
    struct flock range = wholeFile();
    if (!file.isValid() || !isOrdinaryFile(file) || fcntl(file.get(), F_OFD_GETLK, &range) != 0)
        return State::None;
    return range.l_type == F_UNLCK ? State::Abandoned : State::Held;
}

} // namespace kel
