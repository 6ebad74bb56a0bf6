#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>
#include <QLockFile>

namespace
{

constexpr int AnswerLimitMs = 2000;
constexpr int TurnLimitMs = 5000;

/// The same for all programs of one person on one display. Not readable, because a display's name may hold a slash.
QString serverName()
{
    const QByteArray place = QDir::homePath().toUtf8() + '\n' + qgetenv("DISPLAY") + '\n' + qgetenv("XDG_SESSION_ID");
    return QStringLiteral("keldock-") +
           QString::fromLatin1(QCryptographicHash::hash(place, QCryptographicHash::Sha1).toHex().left(16));
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
    // One at a time: of those that start together each would find that no other listens yet. Windows lets them all.
    QLockFile turn(QDir::temp().filePath(m_name + QStringLiteral(".lock")));
    turn.tryLock(TurnLimitMs);
    if (callFirst())
        return false;
    if (m_server.listen(m_name))
        return true;
    QLocalServer::removeServer(m_name); // left behind by a program that crashed
    if (!m_server.listen(m_name))
        qWarning("[SingleInstance] %s", qUtf8Printable(m_server.errorString()));
    return true;
}

bool SingleInstance::callFirst() const
{
    QLocalSocket first;
    first.connectToServer(m_name);
    return first.waitForConnected(AnswerLimitMs);
}
