#include "files/RenameOver.h"

#include <QDeadlineTimer>
#include <QDir>

#include <string>

#include <windows.h>

namespace kel
{

namespace
{

// A virus scanner, an indexer or a reader may have the file open for a short time.
constexpr int kTimeoutMs = 500;
constexpr DWORD kRetryIntervalMs = 10;

/// The path as Qt passes it to Windows: absolute, with the prefix that allows more than 260 characters.
std::wstring extendedPath(const QString &path)
{
    const std::wstring given = QDir::toNativeSeparators(path).toStdWString();
    std::wstring full(GetFullPathNameW(given.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(given.c_str(), DWORD(full.size()), full.data(), nullptr));
    if (!given.empty() && given.back() == L' ')
        full += L' '; // dropped by GetFullPathName, kept by Qt
    if (full.compare(0, 2, L"\\\\") == 0)
        return L"\\\\?\\UNC\\" + full.substr(2);
    return L"\\\\?\\" + full;
}

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
