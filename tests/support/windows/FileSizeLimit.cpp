#include "support/FileSizeLimit.h"

#include <QRegularExpression>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>

#include <windows.h>

#include <psapi.h>

// Windows has no limit for file sizes. Every write goes through WriteFile(), which is replaced by a limited version in
// the import table of every module of the process.
namespace
{

std::atomic<quint64> g_limit{0};
std::atomic<decltype(&WriteFile)> g_writeFile{nullptr};

BOOL WINAPI writeWithinLimit(HANDLE file, LPCVOID data, DWORD size, LPDWORD written, LPOVERLAPPED overlapped)
{
    LARGE_INTEGER place{};
    const DWORD wanted = size;
    if (GetFileType(file) == FILE_TYPE_DISK && SetFilePointerEx(file, {}, &place, FILE_CURRENT) &&
        quint64(place.QuadPart) + size > g_limit) {
        // A nearly full disk accepts what fits.
        size = DWORD(g_limit - qMin<quint64>(g_limit, quint64(place.QuadPart)));
        if (size == 0) {
            *written = 0;
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        }
    }
    const BOOL isWritten = g_writeFile.load()(file, data, size, written, overlapped);
    if (isWritten && size < wanted)
        SetLastError(ERROR_DISK_FULL); // the C library asks for the reason of a short write
    return isWritten;
}

void exchangeImport(HMODULE module, void *from, void *to)
{
    const auto base = reinterpret_cast<char *>(module);
    const auto dos = reinterpret_cast<const IMAGE_DOS_HEADER *>(base);
    const auto headers = reinterpret_cast<const IMAGE_NT_HEADERS *>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY &imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.Size == 0)
        return;
    for (auto library = reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR *>(base + imports.VirtualAddress); library->Name;
         ++library) {
        for (auto function = reinterpret_cast<void **>(base + library->FirstThunk); *function; ++function) {
            DWORD protection = 0;
            if (*function != from || !VirtualProtect(function, sizeof *function, PAGE_READWRITE, &protection))
                continue;
            *function = to;
            VirtualProtect(function, sizeof *function, protection, &protection);
        }
    }
}

void exchangeImports(void *from, void *to)
{
    std::array<HMODULE, 512> modules{};
    DWORD bytes = 0;
    EnumProcessModules(GetCurrentProcess(), modules.data(), sizeof modules, &bytes);
    for (std::size_t i = 0; i < qMin(modules.size(), bytes / sizeof(HMODULE)); ++i)
        exchangeImport(modules[i], from, to);
}

} // namespace

FileSizeLimit::FileSizeLimit(quint64 bytes)
{
    g_limit = bytes;
    g_writeFile = reinterpret_cast<decltype(&WriteFile)>(
        reinterpret_cast<void *>(GetProcAddress(GetModuleHandleW(L"kernel32"), "WriteFile")));
    exchangeImports(reinterpret_cast<void *>(g_writeFile.load()), reinterpret_cast<void *>(&writeWithinLimit));
}

FileSizeLimit::~FileSizeLimit()
{
    exchangeImports(reinterpret_cast<void *>(&writeWithinLimit), reinterpret_cast<void *>(g_writeFile.load()));
}

QString FileSizeLimit::errorText()
{
    return qt_error_string(ERROR_DISK_FULL);
}

QString FileSizeLimit::errorPattern()
{
    return QString("(%1|%2)").arg(QRegularExpression::escape(errorText()), std::strerror(ENOSPC));
}
