#include "console/ProgramArguments.h"

#include <windows.h>

#include <shellapi.h>

namespace kel
{

// argv is in the system's code page, which lacks most characters: the Unicode command line is parsed instead.
QStringList programArguments(int, char **)
{
    QStringList arguments;
    int count = 0;
    if (LPWSTR *words = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 1; i < count; ++i)
            arguments.append(QString::fromWCharArray(words[i]));
        LocalFree(words);
    }
    return arguments;
}

} // namespace kel
