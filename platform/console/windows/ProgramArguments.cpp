#include "console/ProgramArguments.h"

#include <windows.h>

#include <shellapi.h>

namespace kel
{

// argv is in the system's code page, which has room for few characters: the command line itself is read again.
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
