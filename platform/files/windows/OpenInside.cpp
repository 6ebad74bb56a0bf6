#include "files/OpenInside.h"

#include "files/windows/ExtendedPath.h"
#include "files/windows/ReparsePoint.h"

#include <QFile>
#include <QStringList>

#include <memory>

#include <fcntl.h>
#include <io.h>
#include <windows.h>

namespace kel
{

namespace
{

struct HandleCloser {
    using pointer = HANDLE;
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<HANDLE, HandleCloser>;

Handle openForReading(const QString &path)
{
    const HANDLE handle =
        CreateFileW(extendedPath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    return Handle(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

} // namespace

QString openInside(QFile *file, const QString &root, const QString &name)
{
    QString path = root;
    for (const QString &part : name.split(QLatin1Char('/'))) {
        // A colon begins the name of a drive or of a stream inside the file.
        if (part == QLatin1String("..") || part.contains(QLatin1Char(':')) || part.contains(QLatin1Char('\\')) ||
            part.contains(QChar::Null))
            return QStringLiteral("%1 is not a name in the directory").arg(part);
        path += QLatin1Char('/') + part;
        if (isLinkAt(path))
            return QStringLiteral("%1 is a link").arg(part);
    }
    Handle opened = openForReading(path);
    if (!opened)
        return qt_error_string();
    if (GetFileType(opened.get()) != FILE_TYPE_DISK)
        return QStringLiteral("%1 is not an ordinary file").arg(name);
    if (isLink(opened.get()))
        return QStringLiteral("%1 is a link").arg(name);
    const int descriptor = _open_osfhandle(intptr_t(opened.get()), _O_RDONLY);
    if (descriptor < 0)
        return qt_error_string();
    opened.release(); // owned by the descriptor
    return file->open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle) ? QString() : file->errorString();
}

} // namespace kel
