#pragma once

#include <QMetaType>
#include <QProcess>

#ifndef _WIN32
#include <csignal>
#endif

/// The ways to stop a program from outside.
enum class StopSignal { Interrupt, Terminate, HangUp };
Q_DECLARE_METATYPE(StopSignal)

/// Makes programs started from now on react to SIGINT. A test run in the background ignores it, and they would inherit
/// that.
inline void takeSignals()
{
#ifndef _WIN32
    std::signal(SIGINT, SIG_DFL);
#endif
}

inline void sendSignal([[maybe_unused]] const QProcess &process, [[maybe_unused]] StopSignal signal)
{
#ifdef _WIN32
    qFatal("Windows has no signals");
#else
    constexpr int kNumbers[] = {SIGINT, SIGTERM, SIGHUP};
    ::kill(static_cast<pid_t>(process.processId()), kNumbers[int(signal)]);
#endif
}
