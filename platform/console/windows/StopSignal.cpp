#include "console/StopSignal.h"

#include <QWinEventNotifier>

#include <atomic>

#include <windows.h>

namespace kel
{

namespace
{

// Longer than the five seconds after which Windows ends the process in any case.
constexpr DWORD kCloseTimeoutMs = 10'000;

// The only state that the handler uses. It runs on a thread of the system.
std::atomic<bool> g_raised{false};
HANDLE g_stop = nullptr;     // set when a request arrives
HANDLE g_finished = nullptr; // set when the StopSignal is destroyed, its work completed

BOOL WINAPI handleConsoleEvent(DWORD event)
{
    g_raised = true;
    SetEvent(g_stop);
    // When the console is closed or the session ends, Windows ends the process as soon as the handler returns.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        WaitForSingleObject(g_finished, kCloseTimeoutMs);
    return TRUE;
}

} // namespace

StopSignal::StopSignal()
{
    g_raised = false;
    // Never closed: a handler may still wait for them while the process ends.
    if (!g_stop) {
        g_stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        g_finished = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    }
    ResetEvent(g_stop);
    ResetEvent(g_finished);
    auto notifier = std::make_unique<QWinEventNotifier>(g_stop);
    connect(notifier.get(), &QWinEventNotifier::activated, this, [this, notifier = notifier.get()] {
        notifier->setEnabled(false);
        emit raised();
    });
    m_notifier = std::move(notifier);
    SetConsoleCtrlHandler(handleConsoleEvent, TRUE);
}

StopSignal::~StopSignal()
{
    SetConsoleCtrlHandler(handleConsoleEvent, FALSE);
    m_notifier.reset();
    SetEvent(g_finished);
}

bool StopSignal::isRaised() const
{
    return g_raised;
}

} // namespace kel
