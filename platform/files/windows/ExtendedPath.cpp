#include "files/windows/ExtendedPath.h"

#include <QDir>

#include <windows.h>

namespace kel
{

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

} // namespace kel
