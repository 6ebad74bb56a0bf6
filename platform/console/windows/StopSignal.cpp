#include "console/StopSignal.h"

#include <QWinEventNotifier>

#include <atomic>

#include <windows.h>

namespace kel
{

namespace
{

// Windows ends the process after five seconds, whatever a handler does.
constexpr DWORD closeLimitMs = 10'000;

// All that the handler, which runs on a thread of the system's, touches.
std::atomic<bool> g_raised{false};
HANDLE g_stop = nullptr;     // set once it is raised
HANDLE g_finished = nullptr; // set once what was begun is finished

BOOL WINAPI handleConsoleEvent(DWORD event)
{
    g_raised = true;
    SetEvent(g_stop);
    // A closed console and the end of a session end the process as soon as the handler returns.
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        WaitForSingleObject(g_finished, closeLimitMs);
    return TRUE;
}

} // namespace

StopSignal::StopSignal()
{
    g_raised = false;
    // They are never closed: a handler may be waiting for them to the end.
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
