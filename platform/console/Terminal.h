#pragma once

#include <QString>

#include <cstdio>

/// The terminal that the program was started in, if any.
namespace kel::Terminal
{

/// Writes text to stdout or stderr in the encoding of the terminal, pipe or file.
void write(std::FILE *stream, const QString &text);

/// True when standard output is a terminal that can overwrite a line.
bool isTerminal();

/// True when standard output is a pipe whose reader has gone, as in "keldock info DIR | head -1".
bool hasReaderGone();

/// Columns of the terminal; 80 when unknown.
int width();

/// True when standard output can show characters beyond ASCII.
bool showsUnicode();

/// Qt's platform plugins for this desktop, the best first, separated by semicolons.
const char *desktopPlatform();

/// The name of the platform plugin for programs without windows. It provides the system fonts.
const char *windowlessPlatform();

} // namespace kel::Terminal
