#include "support/FileSizeLimit.h"

#include <QRegularExpression>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>

namespace
{
rlimit g_before{};
void (*g_signal)(int) = SIG_DFL;
} // namespace

FileSizeLimit::FileSizeLimit(quint64 bytes)
{
    g_signal = std::signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &g_before);
    const rlimit limit{rlim_t(bytes), g_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit()
{
    setrlimit(RLIMIT_FSIZE, &g_before);
    std::signal(SIGXFSZ, g_signal);
}

QString FileSizeLimit::errorText()
{
    return qt_error_string(EFBIG);
}

QString FileSizeLimit::errorPattern()
{
    return QRegularExpression::escape(errorText());
}
