#pragma once

#include <QString>

#include <cstdio>

/// The terminal that a program was started in, if any.
namespace kel::Terminal
{

/// Writes text to stdout or stderr in the encoding that is expected there.
void write(std::FILE *stream, const QString &text);

/// Standard output is a terminal on which a line can be drawn again.
bool isTerminal();

/// Columns of that terminal; 80 where nobody tells.
int width();

/// What is written shows more than ASCII.
bool showsUnicode();

/// The name of Qt's platform plugin for the desktop of this system.
const char *desktopPlatform();

/// The name of the one for programs without windows. It knows the fonts of the system.
const char *windowlessPlatform();

} // namespace kel::Terminal
