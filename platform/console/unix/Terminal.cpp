#include "console/Terminal.h"

#include "x11/DisplayServer.h"

#include <langinfo.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kel
{

void Terminal::write(std::FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
}

bool Terminal::isTerminal()
{
    return isatty(STDOUT_FILENO) && qgetenv("TERM") != "dumb";
}

bool Terminal::hasReaderGone()
{
    pollfd output{STDOUT_FILENO, POLLOUT, 0};
    return poll(&output, 1, 0) > 0 && (output.revents & POLLERR);
}

int Terminal::width()
{
    winsize size{};
    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

bool Terminal::showsUnicode()
{
    return qstrcmp(nl_langinfo(CODESET), "UTF-8") == 0;
}

const char *Terminal::desktopPlatform()
{
    return displayServer() == DisplayServer::Wayland ? "wayland;xcb" : "xcb";
}

const char *Terminal::windowlessPlatform()
{
    return "offscreen";
}

} // namespace kel
