#include "files/PrivateFile.h"

namespace kel
{

bool PrivateFile::open(OpenMode mode)
{
    const int file = openDescriptor(mode);
    return file >= 0 && QFile::open(file, mode & ~(Truncate | NewOnly | ExistingOnly), AutoCloseHandle);
}

bool PrivateFile::fail(const QString &reason)
{
    setErrorString(reason);
    return false;
}

} // namespace kel
