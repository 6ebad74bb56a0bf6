#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QLockFile>

namespace
{

constexpr int kConnectTimeoutMs = 2000;
constexpr int kLockTimeoutMs = 5000;

/// Identical for all instances of one user on one display. Hashed because a display name may contain a slash.
QString serverName()
{
    const QByteArray session = QDir::homePath().toUtf8() + '\n' + qgetenv("DISPLAY") + '\n' + qgetenv("XDG_SESSION_ID");
    return QLatin1String("keldock-") +
           QString::fromLatin1(QCryptographicHash::hash(session, QCryptographicHash::Sha1).toHex().left(16));
}

} // namespace

SingleInstance::SingleInstance(QObject *parent)
    : QObject(parent)
    , m_name(serverName())
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
    // Instances that start at the same time would not see each other's server yet, and Windows lets all of them listen.
    QLockFile lock(QDir::temp().filePath(m_name + QLatin1String(".lock")));
    lock.tryLock(kLockTimeoutMs);
    if (notifyFirstInstance())
        return false;
    if (m_server.listen(m_name))
        return true;
    QLocalServer::removeServer(m_name); // left behind by a crashed instance
    if (!m_server.listen(m_name))
        qWarning("[SingleInstance] %s", qUtf8Printable(m_server.errorString()));
    return true;
}

bool SingleInstance::notifyFirstInstance() const
{
    QLocalSocket first;
    first.connectToServer(m_name);
    return first.waitForConnected(kConnectTimeoutMs);
}
