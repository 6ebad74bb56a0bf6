#include "files/SyncToDisk.h"

#include "files/windows/ExtendedPath.h"
#include "files/windows/ReparsePoint.h"

namespace kel
{

QString syncFile(const QString &path)
{
    const HANDLE file =
        CreateFileW(extendedPath(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return qt_error_string(int(GetLastError()));
    QString problem;
    if (isLink(file))
        problem = QStringLiteral("It is a link");
    else if (!FlushFileBuffers(file))
        problem = qt_error_string(int(GetLastError()));
    CloseHandle(file);
    return problem;
}

QString syncDirectory(const QString &)
{
    return {};
}

} // namespace kel
