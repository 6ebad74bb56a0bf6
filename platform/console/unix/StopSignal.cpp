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

constexpr std::array kStopSignals{SIGINT, SIGTERM, SIGHUP};

// The only state that the signal handler uses.
std::atomic<bool> g_raised{false};
std::array<int, 2> g_pipe{-1, -1};
std::array<struct sigaction, kStopSignals.size()> g_previous;

extern "C" void handleStopSignal(int)
{
    const int savedErrno = errno;
    if (!g_raised.exchange(true)) {
        // A single byte never fills the pipe; if the write fails, the flag is still set.
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
    for (std::size_t i = 0; i < kStopSignals.size(); ++i) {
        sigaction(kStopSignals[i], nullptr, &g_previous[i]);
        if (g_previous[i].sa_handler != SIG_IGN)
            sigaction(kStopSignals[i], &action, nullptr);
    }
}

StopSignal::~StopSignal()
{
    for (std::size_t i = 0; i < kStopSignals.size(); ++i)
        sigaction(kStopSignals[i], &g_previous[i], nullptr);
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
