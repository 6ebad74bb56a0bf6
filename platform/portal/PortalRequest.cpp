#include "portal/PortalRequest.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QUuid>

#include <utility>

namespace kel
{

using namespace DesktopPortal;

namespace
{

const QString kRequestInterface = QStringLiteral("org.freedesktop.portal.Request");

constexpr uint kSuccess = 0;
constexpr uint kDeclined = 1;

/// Where the portal will answer a request with this token.
QString requestPath(const QString &token)
{
    const QString sender =
        QDBusConnection::sessionBus().baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    return QStringLiteral("%1/request/%2/%3").arg(kPath, sender, token);
}

} // namespace

QString DesktopPortal::newToken()
{
    return QLatin1String("kelmovie") + QUuid::createUuid().toString(QUuid::Id128);
}

PortalRequest::PortalRequest(const QString &interface, const QString &method, QVariantList arguments,
                             QVariantMap options, std::chrono::milliseconds limit, QObject *parent)
    : QObject(parent)
    , m_method(method)
    , m_path([&options] {
        const QString token = newToken();
        options.insert(QStringLiteral("handle_token"), token);
        return requestPath(token);
    }())
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    // The answer may come before the reply to the call.
    bus.connect(kService, m_path, kRequestInterface, QStringLiteral("Response"), this,
                SLOT(onResponse(uint, QVariantMap)));
    auto *const watcher = new QDBusServiceWatcher(kService, bus, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { fail(QStringLiteral("the desktop portal has ended")); });
    connect(&m_limit, &QTimer::timeout, this, [this] { fail(QStringLiteral("there is no answer")); });
    m_limit.setSingleShot(true);
    m_limit.start(limit);

    QDBusMessage call = QDBusMessage::createMethodCall(kService, kPath, interface, method);
    arguments.append(options);
    call.setArguments(arguments);
    auto *const reply = new QDBusPendingCallWatcher(bus.asyncCall(call, int(limit.count())), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, &PortalRequest::onReply);
}

PortalRequest::~PortalRequest()
{
    if (!m_hasEnded)
        QDBusConnection::sessionBus().send(
            QDBusMessage::createMethodCall(kService, m_path, kRequestInterface, QStringLiteral("Close")));
}

void PortalRequest::onReply(QDBusPendingCallWatcher *watcher)
{
    const QDBusPendingReply<> reply = *watcher;
    if (reply.isError())
        fail(reply.error().message());
}

void PortalRequest::onResponse(uint code, const QVariantMap &results)
{
    if (code != kSuccess && code != kDeclined) {
        fail(QStringLiteral("the portal of this desktop has failed"));
        return;
    }
    if (!end())
        return;
    if (code == kSuccess)
        emit succeeded(results);
    else
        emit declined();
}

/// False when it has ended before.
bool PortalRequest::end()
{
    m_limit.stop();
    return !std::exchange(m_hasEnded, true);
}

void PortalRequest::fail(const QString &error)
{
    if (end())
        emit failed(QStringLiteral("%1: %2").arg(m_method, error));
}

} // namespace kel
