#include "screen/portal/PortalSession.h"

#include "portal/PortalRequest.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>

#include <fcntl.h>

namespace kel
{

using namespace DesktopPortal;

namespace
{

constexpr std::chrono::seconds kReplyLimit{30}; // the portal may have to be started first
constexpr std::chrono::minutes kPersonLimit{10};

constexpr uint kMonitor = 1;
constexpr uint kHiddenPointer = 1;
constexpr uint kPointerInPicture = 2;
constexpr uint kPointerApart = 4;
constexpr uint kKeepUntilRevoked = 2;

const QString kInterface = QStringLiteral("org.freedesktop.portal.ScreenCast");
const QString kSessionInterface = QStringLiteral("org.freedesktop.portal.Session");

QDBusMessage callOf(const QString &method)
{
    return QDBusMessage::createMethodCall(kService, kPath, kInterface, method);
}

/// A pair of numbers, (ii).
QPoint pairOf(const QVariant &value)
{
    QPoint pair;
    if (value.canConvert<QDBusArgument>()) {
        const auto argument = value.value<QDBusArgument>();
        if (argument.currentSignature() == QLatin1String("(ii)"))
            argument >> pair;
    }
    return pair;
}

QVector<PortalSession::Stream> streamsOf(const QVariant &value)
{
    QVector<PortalSession::Stream> streams;
    if (!value.canConvert<QDBusArgument>())
        return streams;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("a(ua{sv})"))
        return streams;
    argument.beginArray();
    while (!argument.atEnd()) {
        PortalSession::Stream stream;
        QVariantMap properties;
        argument.beginStructure();
        argument >> stream.node >> properties;
        argument.endStructure();
        const QPoint size = pairOf(properties.value(QStringLiteral("size")));
        stream.monitor = {pairOf(properties.value(QStringLiteral("position"))), QSize(size.x(), size.y())};
        streams.append(stream);
    }
    argument.endArray();
    return streams;
}

} // namespace

PortalSession::PortalSession(QObject *parent)
    : QObject(parent)
{
}

PortalSession::~PortalSession()
{
    if (!m_session.isEmpty())
        QDBusConnection::sessionBus().send(
            QDBusMessage::createMethodCall(kService, m_session, kSessionInterface, QStringLiteral("Close")));
}

void PortalSession::start(const Wish &wish)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        kService, kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("GetAll"));
    call << kInterface;
    auto *const reply = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(call, int(std::chrono::milliseconds(kReplyLimit).count())), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [this, reply, wish] {
        reply->deleteLater();
        const QDBusPendingReply<QVariantMap> properties = *reply;
        if (properties.isError()) {
            emit failed(
                QStringLiteral("The portal of this desktop (xdg-desktop-portal and its part for this desktop) "
                               "offers no screen cast (%1). Install its part for this desktop, or log out and choose "
                               "an X11 session (often called \"Xorg\") on the login screen.")
                    .arg(properties.error().message()));
            return;
        }
        m_version = properties.value().value(QStringLiteral("version")).toUInt();
        m_cursorModes = properties.value().value(QStringLiteral("AvailableCursorModes")).toUInt();
        createSession(wish);
    });
}

void PortalSession::createSession(const Wish &wish)
{
    request(QStringLiteral("CreateSession"), {}, {{QStringLiteral("session_handle_token"), newToken()}}, kReplyLimit,
            [this, wish](const QVariantMap &results) {
                m_session = results.value(QStringLiteral("session_handle")).toString();
                QDBusConnection::sessionBus().connect(kService, m_session, kSessionInterface, QStringLiteral("Closed"),
                                                      this, SIGNAL(closed()));
                selectSources(wish);
            });
}

void PortalSession::selectSources(const Wish &wish)
{
    m_tellsPointer = m_cursorModes & kPointerApart;
    const uint cursorMode = m_tellsPointer                                          ? kPointerApart
                            : wish.withPointer && m_cursorModes & kPointerInPicture ? kPointerInPicture
                                                                                    : kHiddenPointer;
    QVariantMap options{{QStringLiteral("types"), kMonitor}, {QStringLiteral("multiple"), wish.severalMonitors}};
    if (m_version >= 2)
        options.insert(QStringLiteral("cursor_mode"), cursorMode);
    if (m_version >= 4) {
        options.insert(QStringLiteral("persist_mode"), kKeepUntilRevoked);
        if (!wish.restoreToken.isEmpty())
            options.insert(QStringLiteral("restore_token"), wish.restoreToken);
    }
    request(QStringLiteral("SelectSources"), {QVariant::fromValue(QDBusObjectPath(m_session))}, options, kReplyLimit,
            [this](const QVariantMap &) { startCast(); });
}

void PortalSession::startCast()
{
    const QString noWindow;
    request(QStringLiteral("Start"), {QVariant::fromValue(QDBusObjectPath(m_session)), noWindow}, {}, kPersonLimit,
            [this](const QVariantMap &results) { onStarted(results); });
}

void PortalSession::onStarted(const QVariantMap &results)
{
    m_restoreToken = results.value(QStringLiteral("restore_token")).toString();
    m_streams = streamsOf(results.value(QStringLiteral("streams")));
    if (m_streams.isEmpty())
        emit failed(QStringLiteral("The portal of this desktop has granted a screen cast without a screen."));
    else
        emit started();
}

void PortalSession::request(const QString &method, const QVariantList &arguments, const QVariantMap &options,
                            std::chrono::milliseconds limit, const OnResults &done)
{
    auto *const request = new PortalRequest(kInterface, method, arguments, options, limit, this);
    connect(request, &PortalRequest::succeeded, this, [request, done](const QVariantMap &results) {
        request->deleteLater();
        done(results);
    });
    connect(request, &PortalRequest::declined, this, &PortalSession::declined);
    connect(request, &PortalRequest::failed, this, [this](const QString &error) {
        emit failed(QStringLiteral("The portal of this desktop cannot show the screen (%1).").arg(error));
    });
}

void PortalSession::openRemote(const OnRemote &done)
{
    QDBusMessage call = callOf(QStringLiteral("OpenPipeWireRemote"));
    call << QVariant::fromValue(QDBusObjectPath(m_session)) << QVariantMap();
    auto *const reply = new QDBusPendingCallWatcher(
        QDBusConnection::sessionBus().asyncCall(call, int(std::chrono::milliseconds(kReplyLimit).count())), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this, [reply, done] {
        reply->deleteLater();
        const QDBusPendingReply<QDBusUnixFileDescriptor> remote = *reply;
        const int descriptor = remote.isError() ? -1 : fcntl(remote.value().fileDescriptor(), F_DUPFD_CLOEXEC, 0);
        done(descriptor, remote.error().message());
    });
}

} // namespace kel
