#include "cli/Console.h"

#include <QByteArray>

#include <cstdio>

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

void Console::print(const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
}

void Console::printError(const QString &line)
{
    std::fflush(stdout); // the order in which things were said matters where both go to one place
    const QByteArray bytes = line.toLocal8Bit() + '\n';
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stderr);
}

bool Console::flush()
{
    return std::fflush(stdout) == 0 && !std::ferror(stdout);
}

bool Console::isTerminal()
{
    return isatty(STDOUT_FILENO) && qgetenv("TERM") != "dumb";
}

int Console::width()
{
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

bool Console::showsUnicode()
{
    return qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}
