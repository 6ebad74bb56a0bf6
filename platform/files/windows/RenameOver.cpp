#include "files/RenameOver.h"

#include "files/windows/ExtendedPath.h"

#include <QDeadlineTimer>

#include <string>

#include <windows.h>

namespace kel
{

namespace
{

// A virus scanner, an indexer or a reader may have the file open for a short time.
constexpr int kTimeoutMs = 500;
constexpr DWORD kRetryIntervalMs = 10;

bool isInUse(DWORD error)
{
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED || error == ERROR_LOCK_VIOLATION;
}

} // namespace

QString renameOver(const QString &from, const QString &to)
{
    const std::wstring source = extendedPath(from);
    const std::wstring target = extendedPath(to);
    const QDeadlineTimer limit(kTimeoutMs);
    while (!MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        const DWORD error = GetLastError();
        if (!isInUse(error) || limit.hasExpired())
            return qt_error_string(int(error));
        Sleep(kRetryIntervalMs);
    }
    return QString();
}

} // namespace kel
