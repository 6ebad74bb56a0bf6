#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QLocalSocket>

namespace
{

constexpr int AnswerLimitMs = 2000;

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
    if (callFirst())
        return false;
    if (m_server.listen(m_name))
        return true;
    // Left behind by a program that crashed, unless another one was just a moment faster.
    if (callFirst())
        return false;
    QLocalServer::removeServer(m_name);
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
