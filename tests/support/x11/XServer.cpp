#include "support/x11/XServer.h"

#include <csignal>

XServer::XServer(const QStringList &arguments)
{
    m_process.setStandardErrorFile(QProcess::nullDevice());
    m_process.start("Xvfb", QStringList{"-displayfd", "1", "-nolisten", "tcp", "-noreset"} + arguments);
    while (!m_process.canReadLine() && m_process.waitForReadyRead()) {
    }
    const QByteArray number = m_process.readLine().trimmed();
    if (!number.isEmpty())
        m_display = ':' + number;
}

XServer::~XServer()
{
    thaw();
    m_process.terminate();
    if (!m_process.waitForFinished(5000))
        kill();
}

void XServer::freeze()
{
    ::kill(pid_t(m_process.processId()), SIGSTOP);
}

void XServer::thaw()
{
    if (m_process.state() == QProcess::Running)
        ::kill(pid_t(m_process.processId()), SIGCONT);
}

void XServer::kill()
{
    m_process.kill();
    m_process.waitForFinished();
}
