#include "files/windows/ReparsePoint.h"

namespace kel
{

bool isLink(HANDLE file)
{
    FILE_ATTRIBUTE_TAG_INFO info;
    return GetFileInformationByHandleEx(file, FileAttributeTagInfo, &info, sizeof info) &&
           (info.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) && IsReparseTagNameSurrogate(info.ReparseTag);
}

} // namespace kel
