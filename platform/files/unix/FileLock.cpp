#include "files/FileLock.h"

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

bool isOrdinaryFile(int file)
{
    struct stat status;
    return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

/// Whether `path` still leads to the open file: the holder before may have deleted it after it was opened here.
bool isAt(const QByteArray &path, int file)
{
    struct stat here;
    struct stat there;
    return fstat(file, &here) == 0 && lstat(path.constData(), &there) == 0 && here.st_dev == there.st_dev &&
           here.st_ino == there.st_ino;
}
} // namespace

class FileLock::Private
{
public:
    QByteArray path;
    int file = -1;
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
        const int file = ::open(name.constData(), O_RDWR | O_CREAT | kOpenFlags, S_IRUSR | S_IWUSR);
        if (file < 0 || !isOrdinaryFile(file)) {
            if (file < 0)
                m_error = errno == ELOOP ? QStringLiteral("It is a link") : qt_error_string();
            else
                m_error = QStringLiteral("It is not an ordinary file");
            if (file >= 0)
                ::close(file);
            return Result::Failed;
        }
        struct flock range = wholeFile();
        if (fcntl(file, F_OFD_SETLK, &range) != 0) {
            const bool isHeld = errno == EAGAIN || errno == EACCES;
            if (!isHeld)
                ::unlink(name.constData());
            ::close(file);
            return isHeld ? Result::HeldElsewhere : Result::NotSupported;
        }
        if (isAt(name, file)) {
            d->path = name;
            d->file = file;
            return Result::Acquired;
        }
        ::close(file);
    }
    m_error = QStringLiteral("Others keep replacing it");
    return Result::Failed;
}

void FileLock::release()
{
    if (d->file < 0)
        return;
    if (isAt(d->path, d->file)) // the directory may have been renamed, and another one put in its place
        ::unlink(d->path.constData());
    ::close(std::exchange(d->file, -1));
}

FileLock::State FileLock::stateOf(const QString &path)
{
    const int file = ::open(QFile::encodeName(path).constData(), O_RDONLY | kOpenFlags);
    if (file < 0)
        return State::None;
    struct flock range = wholeFile();
    State state = State::None;
    if (isOrdinaryFile(file) && fcntl(file, F_OFD_GETLK, &range) == 0)
        state = range.l_type == F_UNLCK ? State::Abandoned : State::Held;
    ::close(file);
    return state;
}

} // namespace kel
