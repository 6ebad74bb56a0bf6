#pragma once

#include <QString>
#include <QStringList>

#include <mutex>

/// Collects what is logged during its life, each line after a letter for its channel: "D ", "I ", "W " or "C ".
/// One at a time.
class LogCapture
{
public:
    LogCapture()
        : m_previous(qInstallMessageHandler(handle))
    {
        std::lock_guard lock(mutex());
        lines().clear();
    }
    ~LogCapture() { qInstallMessageHandler(m_previous); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    /// What was logged since the last call.
    QStringList take()
    {
        std::lock_guard lock(mutex());
        QStringList taken;
        taken.swap(lines());
        return taken;
    }

private:
    static void handle(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        static const char letters[] = {'D', 'W', 'C', 'F', 'I'};
        std::lock_guard lock(mutex());
        lines() << QChar(letters[type]) + QStringLiteral(" ") + text;
    }
    static std::mutex &mutex()
    {
        static std::mutex theMutex;
        return theMutex;
    }
    static QStringList &lines()
    {
        static QStringList theLines;
        return theLines;
    }

    const QtMessageHandler m_previous;
};
