#include "style/dbus/PortalTheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace kel
{

namespace
{

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString kGroup = QStringLiteral("org.freedesktop.appearance");
const QString kKey = QStringLiteral("color-scheme");

constexpr uint kPrefersDark = 1;
constexpr uint kPrefersLight = 2;

} // namespace

std::unique_ptr<SystemTheme> SystemTheme::create()
{
    return std::make_unique<PortalTheme>();
}

PortalTheme::PortalTheme()
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
                SLOT(onSettingChanged(QString, QString, QDBusVariant)));
    QDBusMessage read = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
    read << kGroup << kKey;
    auto *const watcher = new QDBusPendingCallWatcher(bus.asyncCall(read), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &PortalTheme::onRead);
}

void PortalTheme::onRead(QDBusPendingCallWatcher *watcher)
{
    const QDBusPendingReply<QDBusVariant> reply = *watcher;
    watcher->deleteLater();
    if (reply.isValid())
        setFromPortal(reply.value().variant());
}

void PortalTheme::onSettingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group == kGroup && key == kKey)
        setFromPortal(value.variant());
}

void PortalTheme::setFromPortal(QVariant value)
{
    // The reply of Read is wrapped in one more variant than the signal.
    if (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    const uint scheme = value.toUInt();
    setColorScheme(scheme == kPrefersDark    ? ColorScheme::Dark
                   : scheme == kPrefersLight ? ColorScheme::Light
                                             : ColorScheme::Unknown);
}

} // namespace kel
