#include "files/PrivateFile.h"

#include "files/windows/ExtendedPath.h"
#include "files/windows/ReparsePoint.h"

#include <QDir>
#include <QFileInfo>

#include <fcntl.h>
#include <io.h>

namespace kel
{

namespace
{
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
const QString kIsLink = QStringLiteral("It is a link");

bool isLinkAt(const QString &path)
{
    const HANDLE file = CreateFileW(extendedPath(path).c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    const bool result = file != INVALID_HANDLE_VALUE && isLink(file);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    return result;
}
} // namespace

int PrivateFile::openDescriptor(OpenMode mode)
{
    const QString directory = QFileInfo(m_path).path();
    if (isLinkAt(directory)) {
        fail(QStringLiteral("%1: %2").arg(directory, kIsLink));
        return -1;
    }
    if (isLinkAt(m_path)) {
        fail(kIsLink);
        return -1;
    }
    const std::wstring name = extendedPath(m_path);
    if (mode & Truncate)
        DeleteFileW(name.c_str());
    const DWORD access = (mode & ReadOnly) ? GENERIC_READ | GENERIC_WRITE : GENERIC_WRITE;
    const HANDLE file = CreateFileW(name.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    (mode & ExistingOnly) ? OPEN_EXISTING : CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        fail(qt_error_string(int(GetLastError())));
        return -1;
    }
    if (isLink(file)) {
        CloseHandle(file);
        fail(kIsLink);
        return -1;
    }
    return _open_osfhandle(reinterpret_cast<intptr_t>(file), _O_BINARY);
}

QString makePrivateDirectory(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    const std::wstring name = extendedPath(path);
    if (CreateDirectoryW(name.c_str(), nullptr))
        return {};
    const DWORD error = GetLastError();
    if (isLinkAt(path))
        return kIsLink;
    return QFileInfo(path).isDir() ? QString() : qt_error_string(int(error));
}

} // namespace kel
