#pragma once

#include <QtGlobal>

#include <functional>

/// Runs a function, once, if the process ends while this object exists: Qt ends it when it loses its connection to the
/// desktop. GUI thread.
class ExitGuard
{
public:
    /// `complete` must not use windows or the event loop.
    explicit ExitGuard(std::function<void()> complete);
    ~ExitGuard();
    ExitGuard(const ExitGuard &) = delete;
    ExitGuard &operator=(const ExitGuard &) = delete;

private:
    static void watchMessages(QtMsgType type, const QMessageLogContext &context, const QString &message);
    static void completeAll();

    const std::function<void()> m_complete;
};
