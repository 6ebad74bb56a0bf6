#include "app/SingleInstance.h"

#include <session/SessionSocket.h>

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QLockFile>

using namespace kel;

namespace
{

constexpr int kConnectTimeoutMs = 2000;
constexpr int kLockTimeoutMs = 5000;

/// Identical for all instances of one user on one display. Hashed because a display name may contain a slash.
QString sessionName()
{
    const QByteArray session = QDir::homePath().toUtf8() + '\n' + qgetenv("DISPLAY") + '\n' + qgetenv("XDG_SESSION_ID");
    return QLatin1String("keldock-") +
           QString::fromLatin1(QCryptographicHash::hash(session, QCryptographicHash::Sha1).toHex().left(16));
}

} // namespace

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
    , m_name(sessionName())
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *const caller = m_server.nextPendingConnection())
            caller->deleteLater();
        emit startedAgain();
    });
}

bool SingleInstance::claim()
{
    const QString server = SessionSocket::serverName(m_name);
    if (server.isEmpty()) {
        qWarning("[SingleInstance] There is no private directory in which instances could find each other");
        return true;
    }
    // Instances that start at the same time would not see each other's server yet, and Windows lets all of them listen.
    QLockFile lock(SessionSocket::directory() + QLatin1Char('/') + m_name + QLatin1String(".lock"));
    lock.tryLock(kLockTimeoutMs);
    if (notifyFirstInstance(server))
        return false;
    if (m_server.listen(server))
        return true;
    QLocalServer::removeServer(server); // left behind by a crashed instance
    if (!m_server.listen(server))
        qWarning("[SingleInstance] %s", qUtf8Printable(m_server.errorString()));
    return true;
}

/// A server of another user does not count: it would keep the program from starting.
bool SingleInstance::notifyFirstInstance(const QString &server)
{
    QLocalSocket first;
    first.connectToServer(server);
    return first.waitForConnected(kConnectTimeoutMs) && SessionSocket::isOwnUser(first);
}
