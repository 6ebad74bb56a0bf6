#pragma once

#include <QtGlobal>

#ifdef _WIN32

/// Windows limits no files: who needs it is in windows-exceptions.txt.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(quint64) { qFatal("a test of a full disk that Windows cannot run"); }
};

#else

#include <csignal>
#include <sys/resource.h>

/// What stands in for a full disk: no file of this process grows beyond `bytes`.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(quint64 bytes)
        : m_signal(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{rlim_t(bytes), m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_signal);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    void (*const m_signal)(int);
    rlimit m_before{};
};

#endif
