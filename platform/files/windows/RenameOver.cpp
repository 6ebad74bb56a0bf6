#include "files/RenameOver.h"

#include <QDeadlineTimer>
#include <QDir>

#include <string>

#include <windows.h>

namespace kel
{

namespace
{

// A virus scanner or an indexer opens what was just written, a reader looks at the old file: they are done soon.
constexpr int limitMs = 500;
constexpr DWORD restMs = 10;

/// The path as Qt hands it to Windows: absolute, and behind the prefix with which it may be longer than 260 characters.
std::wstring extendedPath(const QString &path)
{
    const std::wstring given = QDir::toNativeSeparators(path).toStdWString();
    std::wstring full(GetFullPathNameW(given.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(GetFullPathNameW(given.c_str(), DWORD(full.size()), full.data(), nullptr));
    if (!given.empty() && given.back() == L' ')
        full += L' '; // which Windows drops and Qt keeps
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
    const QDeadlineTimer limit(limitMs);
    while (!MoveFileExW(source.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        const DWORD error = GetLastError();
        if (!isInUse(error) || limit.hasExpired())
            return qt_error_string(int(error));
        Sleep(restMs);
    }
    return QString();
}

} // namespace kel
