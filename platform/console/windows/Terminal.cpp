#include "console/Terminal.h"

#include <windows.h>

#include <io.h>

namespace kel
{

namespace
{

/// The console behind a stream; null when it is a file or a pipe.
HANDLE consoleOf(std::FILE *stream)
{
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) ? handle : nullptr;
}

/// Overwriting a line needs escape sequences, which the console supports only on request.
bool enableSequences(HANDLE console)
{
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) && SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

} // namespace

// A console takes UTF-16 as it is. Files and pipes get UTF-8.
void Terminal::write(std::FILE *stream, const QString &text)
{
    if (HANDLE console = consoleOf(stream)) {
        DWORD written = 0;
        std::fflush(stream);
        WriteConsoleW(console, text.utf16(), DWORD(text.size()), &written, nullptr);
        return;
    }
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

bool Terminal::isTerminal()
{
    HANDLE console = consoleOf(stdout);
    return console && enableSequences(console);
}

bool Terminal::hasReaderGone()
{
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stdout)));
    DWORD written = 0;
    return GetFileType(handle) == FILE_TYPE_PIPE && !WriteFile(handle, "", 0, &written, nullptr);
}

int Terminal::width()
{
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (GetConsoleScreenBufferInfo(consoleOf(stdout), &info))
        return info.srWindow.Right - info.srWindow.Left + 1;
    return 80;
}

bool Terminal::showsUnicode()
{
    return true;
}

const char *Terminal::desktopPlatform()
{
    return "windows";
}

// The "offscreen" plugin has no fonts on Windows, so texts in images would be missing.
const char *Terminal::windowlessPlatform()
{
    return "windows";
}

} // namespace kel
