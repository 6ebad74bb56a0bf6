#include "console/StopSignal.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace kel
{

namespace
{

constexpr std::array StopSignals{SIGINT, SIGTERM, SIGHUP};
// Their causes are reported as failed writes, which can be answered better than by dying.
constexpr std::array IgnoredSignals{SIGPIPE, SIGXFSZ};

// All that a signal handler may touch.
std::atomic<bool> g_raised{false};
std::array<int, 2> g_pipe{-1, -1};
std::array<struct sigaction, StopSignals.size()> g_previous;
std::array<struct sigaction, IgnoredSignals.size()> g_previousIgnored;

extern "C" void handleStopSignal(int)
{
    const int savedErrno = errno;
    if (!g_raised.exchange(true)) {
        // A full pipe is impossible with one byte; a failed one leaves the flag.
        [[maybe_unused]] const ssize_t written = write(g_pipe[1], "", 1);
    }
    errno = savedErrno;
}

} // namespace

StopSignal::StopSignal()
{
    g_raised = false;
    if (pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) == 0) {
        auto notifier = std::make_unique<QSocketNotifier>(g_pipe[0], QSocketNotifier::Read);
        connect(notifier.get(), &QSocketNotifier::activated, this, [this, notifier = notifier.get()] {
            notifier->setEnabled(false);
            emit raised();
        });
        m_notifier = std::move(notifier);
    }
    struct sigaction action {
    };
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    action.sa_handler = handleStopSignal;
    for (std::size_t i = 0; i < StopSignals.size(); ++i) {
        sigaction(StopSignals[i], nullptr, &g_previous[i]);
        if (g_previous[i].sa_handler != SIG_IGN)
            sigaction(StopSignals[i], &action, nullptr);
    }
    action.sa_handler = SIG_IGN;
    for (std::size_t i = 0; i < IgnoredSignals.size(); ++i)
        sigaction(IgnoredSignals[i], &action, &g_previousIgnored[i]);
}

StopSignal::~StopSignal()
{
    for (std::size_t i = 0; i < StopSignals.size(); ++i)
        sigaction(StopSignals[i], &g_previous[i], nullptr);
    for (std::size_t i = 0; i < IgnoredSignals.size(); ++i)
        sigaction(IgnoredSignals[i], &g_previousIgnored[i], nullptr);
    m_notifier.reset();
    for (int &descriptor : g_pipe) {
        if (descriptor >= 0)
            close(descriptor);
        descriptor = -1;
    }
}

bool StopSignal::isRaised() const
{
    return g_raised;
}

} // namespace kel
