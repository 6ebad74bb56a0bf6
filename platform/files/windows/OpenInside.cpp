#include "files/OpenInside.h"

#include "files/windows/ExtendedPath.h"

#include <QDir>
#include <QFile>

#include <memory>
#include <string>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace kel
{

namespace
{

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, HandleCloser>;

Handle openPath(const QString &path, DWORD access, DWORD flags)
{
    const HANDLE handle =
        CreateFileW(extendedPath(path).c_str(), access, kShareAll, nullptr, OPEN_EXISTING, flags, nullptr);
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

/// Where an open file really is, all links followed; empty on failure.
QString finalPath(const Handle &handle)
{
    std::wstring path(GetFinalPathNameByHandleW(handle.get(), nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    path.resize(GetFinalPathNameByHandleW(handle.get(), path.data(), DWORD(path.size()), FILE_NAME_NORMALIZED));
    return QString::fromStdWString(path);
}

} // namespace

QString openInside(QFile *file, const QString &root, const QString &name)
{
    const Handle dir = openPath(root, 0, FILE_FLAG_BACKUP_SEMANTICS); // the flag that directories need
    if (!dir)
        return qt_error_string();
    Handle opened = openPath(root + QLatin1Char('/') + name, GENERIC_READ, FILE_ATTRIBUTE_NORMAL);
    if (!opened)
        return qt_error_string();
    if (GetFileType(opened.get()) != FILE_TYPE_DISK)
        return QStringLiteral("%1 is not an ordinary file").arg(name);
    const QString expected = finalPath(dir) + QLatin1Char('\\') + QDir::toNativeSeparators(name);
    if (finalPath(opened).compare(expected, Qt::CaseInsensitive) != 0)
        return QStringLiteral("%1 is a link or leads out of the directory").arg(name);
    const int descriptor = _open_osfhandle(intptr_t(opened.get()), _O_RDONLY);
    if (descriptor < 0)
        return qt_error_string();
    opened.release(); // owned by the descriptor
    return file->open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ? QString() : file->errorString();
}

} // namespace kel
