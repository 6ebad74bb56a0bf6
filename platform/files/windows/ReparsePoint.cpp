#include "files/windows/ReparsePoint.h"

#include "files/windows/ExtendedPath.h"

namespace kel
{

bool isLink(HANDLE file)
{
    FILE_ATTRIBUTE_TAG_INFO info;
    return GetFileInformationByHandleEx(file, FileAttributeTagInfo, &info, sizeof info) &&
           (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) && IsReparseTagNameSurrogate(info.ReparseTag);
}

bool isLinkAt(const QString &path)
{
    const HANDLE file = CreateFileW(extendedPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    const bool result = file != INVALID_HANDLE_VALUE && isLink(file);
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    return result;
}

} // namespace kel
