#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

/// A separate X server, for what a test cannot do to the server that it runs on itself.
class XServer
{
public:
    /// Starts Xvfb with these arguments in addition to its usual ones.
    explicit XServer(const QStringList &arguments = {"-screen", "0", "800x600x24"});
    ~XServer();
    XServer(const XServer &) = delete;
    XServer &operator=(const XServer &) = delete;

    /// Such as ":7"; empty if the server did not start.
    QByteArray display() const { return m_display; }

    /// Suspends and resumes the server.
    void freeze();
    void thaw();

    /// Kills the server without notice to its clients. Returns when it has ended.
    void kill();

private:
    QProcess m_process;
    QByteArray m_display;
};
