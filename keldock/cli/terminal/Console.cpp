#include "cli/terminal/Console.h"

#include <console/Terminal.h>

#include <cstdio>
#include <cstdlib>

using namespace kel;

void Console::print(const QString &text)
{
    Terminal::write(stdout, text);
}

void Console::printError(const QString &line)
{
    std::fflush(stdout); // keeps the order when both streams go to the same place
    Terminal::write(stderr, line + QLatin1Char('\n'));
}

bool Console::flush()
{
    return std::fflush(stdout) == 0 && !std::ferror(stdout);
}

bool Console::hasReaderGone()
{
    return Terminal::hasReaderGone();
}

bool Console::isTerminal()
{
    return Terminal::isTerminal();
}

int Console::width()
{
    return Terminal::width();
}

bool Console::showsUnicode()
{
    return Terminal::showsUnicode();
}

void Console::leave(const QString &line)
{
    printError(line);
    std::_Exit(EXIT_FAILURE);
}
