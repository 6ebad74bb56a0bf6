#include "files/PrivateFile.h"

namespace kel
{

bool PrivateFile::fail(const QString &reason)
{
    setErrorString(reason);
    return false;
}

} // namespace kel
