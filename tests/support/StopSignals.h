#pragma once

#include <QMetaType>
#include <QProcess>

#ifndef _WIN32
#include <csignal>
#endif

/// How a program is asked to stop from outside.
enum class StopSignal { Interrupt, Terminate, HangUp };
Q_DECLARE_METATYPE(StopSignal)

/// Lets programs that are started from now on take signals: a test run in the background ignores some, and they would.
inline void takeSignals()
{
#ifndef _WIN32
    std::signal(SIGINT, SIG_DFL);
#endif
}

inline void sendSignal([[maybe_unused]] const QProcess &process, [[maybe_unused]] StopSignal signal)
{
#ifdef _WIN32
    qFatal("a test with signals, which Windows has not");
#else
    constexpr int numbers[] = {SIGINT, SIGTERM, SIGHUP};
    ::kill(static_cast<pid_t>(process.processId()), numbers[int(signal)]);
#endif
}
