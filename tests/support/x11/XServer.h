#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

/// An X server of the test's own, for what a test cannot do to the one that its program runs on.
class XServer
{
public:
    /// Starts Xvfb with these arguments besides its usual ones.
    explicit XServer(const QStringList &arguments = {"-screen", "0", "800x600x24"});
    ~XServer();
    XServer(const XServer &) = delete;
    XServer &operator=(const XServer &) = delete;

    /// ":7", or empty when it did not start.
    QByteArray display() const { return m_display; }

    /// Stops answering, and goes on again.
    void freeze();
    void thaw();

    /// Ends it without a farewell to its clients. Returns when it is gone.
    void kill();

private:
    QProcess m_process;
    QByteArray m_display;
};
