#include "files/FileLock.h"

#include "files/windows/ExtendedPath.h"
#include "files/windows/ReparsePoint.h"

#include <QDeadlineTimer>

#include <utility>

namespace kel
{

namespace
{
// A virus scanner, an indexer or stateOf() may have the file open for a short time.
constexpr int kTimeoutMs = 500;
constexpr DWORD kRetryIntervalMs = 10;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

bool isOrdinaryFile(HANDLE file)
{
    return GetFileType(file) == FILE_TYPE_DISK && !isLink(file); // a directory cannot be opened at all
}
} // namespace

class FileLock::Private
{
public:
    std::wstring path;
    HANDLE file = INVALID_HANDLE_VALUE; // open without sharing, which is the lock
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
    const std::wstring name = extendedPath(path);
    const QDeadlineTimer limit(kTimeoutMs);
    for (;;) {
        const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                        FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            if (!isOrdinaryFile(file)) {
                CloseHandle(file);
                m_error = QStringLiteral("It is not an ordinary file");
                return Result::Failed;
            }
            d->path = name;
            d->file = file;
            return Result::Acquired;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION) {
            m_error = qt_error_string(int(error));
            return Result::Failed;
        }
        if (limit.hasExpired())
            return Result::HeldElsewhere;
        Sleep(kRetryIntervalMs);
    }
}

void FileLock::release()
{
    if (d->file == INVALID_HANDLE_VALUE)
        return;
    CloseHandle(std::exchange(d->file, INVALID_HANDLE_VALUE));
    DeleteFileW(d->path.c_str());
}

FileLock::State FileLock::stateOf(const QString &path)
{
    const HANDLE file = CreateFileW(extendedPath(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return GetLastError() == ERROR_SHARING_VIOLATION ? State::Held : State::None;
    const bool isOrdinary = isOrdinaryFile(file);
    CloseHandle(file);
    return isOrdinary ? State::Abandoned : State::None;
}

} // namespace kel
