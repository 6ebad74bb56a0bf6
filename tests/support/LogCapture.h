#pragma once

#include <QString>
#include <QStringList>

#include <mutex>

/// Collects log messages during its lifetime, each prefixed by its level: "D ", "I ", "W " or "C ".
/// Only one at a time.
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

    /// The messages since the last call.
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
        static const char kLevels[] = {'D', 'W', 'C', 'F', 'I'};
        std::lock_guard lock(mutex());
        lines() << QString("%1 %2").arg(QChar(kLevels[type]), text);
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
