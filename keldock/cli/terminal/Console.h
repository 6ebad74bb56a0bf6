#pragma once

#include <QString>

/// What the program says to the person (or script) that runs it.
namespace Console
{

/// Writes to standard output, as it is.
void print(const QString &text);

/// Writes one line to standard error.
void printError(const QString &line);

/// Hands everything to the system. False when something of standard output was lost (a full disk, a closed pipe).
bool flush();

/// Standard output is a terminal on which a line can be drawn again.
bool isTerminal();

/// Columns of that terminal.
int width();

/// The person's locale can show more than ASCII.
bool showsUnicode();

/// Says why the program failed and ends it on the spot, when everything on the disk is as it shall be: threads that
/// work at what nobody wants any more, and the memory that they hold, would keep the person waiting.
[[noreturn]] void leave(const QString &line);

} // namespace Console
