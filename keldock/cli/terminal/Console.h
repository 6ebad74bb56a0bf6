#pragma once

#include <QString>

/// Output of the command line.
namespace Console
{

/// Writes to standard output without adding a newline.
void print(const QString &text);

/// Writes one line to standard error.
void printError(const QString &line);

/// Flushes standard output. False if output was lost, for example on a full disk or a closed pipe.
bool flush();

/// Whether standard output is a pipe that nobody reads any more.
bool hasReaderGone();

/// Whether standard output is a terminal on which a line can be redrawn.
bool isTerminal();

/// The number of columns of the terminal.
int width();

/// Whether the output can show characters beyond ASCII.
bool showsUnicode();

/// Prints an error and ends the process immediately, so that the user need not wait for worker threads whose results
/// are no longer needed. All files must be in their final state.
[[noreturn]] void leave(const QString &line);

} // namespace Console
