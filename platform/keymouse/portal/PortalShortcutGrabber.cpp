#include "keymouse/portal/PortalShortcutGrabber.h"

#include "keymouse/xkb/Keysym.h"
#include "logging/PlatformLog.h"
#include "portal/PortalRequest.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDebug>
#include <QKeySequence>

#include <xkbcommon/xkbcommon.h>

#include <array>

namespace
{

/// A shortcut as the portal passes it, (sa{sv}).
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(PortalShortcut)
Q_DECLARE_METATYPE(QVector<PortalShortcut>)

namespace kel
{

using namespace DesktopPortal;

namespace
{

const QString kInterface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString kSessionInterface = QStringLiteral("org.freedesktop.portal.Session");

constexpr std::chrono::minutes kPersonLimit{10};
constexpr int kVersionTimeoutMs = 2000;

QString notOffered()
{
    return QCoreApplication::translate(
        "GlobalShortcut", "This desktop offers no shortcuts to programs. Use the toolbar and the tray icon.");
}

/// The combination in the notation of the portal, such as "CTRL+ALT+r".
QString notation(int combination)
{
    struct Modifier {
        Qt::KeyboardModifier qt;
        const char *name;
    };
    static constexpr std::array kModifiers{Modifier{Qt::ControlModifier, "CTRL+"}, Modifier{Qt::AltModifier, "ALT+"},
                                           Modifier{Qt::ShiftModifier, "SHIFT+"}, Modifier{Qt::MetaModifier, "LOGO+"}};
    QString text;
    for (const Modifier &modifier : kModifiers) {
        if (combination & modifier.qt)
            text += QLatin1String(modifier.name);
    }
    std::array<char, 64> name{};
    xkb_keysym_get_name(keysymOf(combination & ~int(Qt::KeyboardModifierMask)), name.data(), name.size());
    return text + QLatin1String(name.data());
}

} // namespace

PortalShortcutGrabber::PortalShortcutGrabber()
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QVector<PortalShortcut>>();
    m_bindSoon.setSingleShot(true);
    connect(&m_bindSoon, &QTimer::timeout, this, &PortalShortcutGrabber::bind);
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(kService, kPath, kInterface, QStringLiteral("Activated"), this,
                SLOT(onActivated(QDBusObjectPath, QString)));
    bus.connect(kService, kPath, kInterface, QStringLiteral("ShortcutsChanged"), this,
                SLOT(onShortcutsChanged(QDBusMessage)));
}

PortalShortcutGrabber::~PortalShortcutGrabber()
{
    close();
}

QString PortalShortcutGrabber::problem()
{
    QDBusMessage get = QDBusMessage::createMethodCall(
        kService, kPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << kInterface << QStringLiteral("version");
    const QDBusMessage reply = QDBusConnection::sessionBus().call(get, QDBus::Block, kVersionTimeoutMs);
    return reply.type() == QDBusMessage::ReplyMessage ? QString() : notOffered();
}

QString PortalShortcutGrabber::grab(int combination, const ShortcutPurpose &purpose)
{
    m_wanted.insert(combination, purpose);
    m_bindSoon.start();
    return {};
}

void PortalShortcutGrabber::release(int combination)
{
    m_wanted.remove(combination);
    m_bindSoon.start();
}

QString PortalShortcutGrabber::trigger(int combination) const
{
    return m_triggers.value(m_bound.value(combination).id);
}

void PortalShortcutGrabber::bind()
{
    if (m_wanted == m_bound)
        return;
    close();
    m_bound = m_wanted;
    if (m_bound.isEmpty())
        return;
    request(QStringLiteral("CreateSession"), {}, {{QStringLiteral("session_handle_token"), newToken()}},
            [this](const QVariantMap &results) {
                m_session = results.value(QStringLiteral("session_handle")).toString();
                QDBusConnection::sessionBus().connect(kService, m_session, kSessionInterface, QStringLiteral("Closed"),
                                                      this, SLOT(onClosed()));
                bindShortcuts();
            });
}

void PortalShortcutGrabber::bindShortcuts()
{
    QVector<PortalShortcut> shortcuts;
    for (auto one = m_bound.cbegin(); one != m_bound.cend(); ++one)
        shortcuts.append({one->id,
                          {{QStringLiteral("description"), one->description},
                           {QStringLiteral("preferred_trigger"), notation(one.key())}}});
    const QString noParentWindow;
    request(QStringLiteral("BindShortcuts"),
            {QVariant::fromValue(QDBusObjectPath(m_session)), QVariant::fromValue(shortcuts), noParentWindow}, {},
            [this](const QVariantMap &results) { setTriggers(results.value(QStringLiteral("shortcuts"))); });
}

void PortalShortcutGrabber::request(const QString &method, const QVariantList &arguments, const QVariantMap &options,
                                    const std::function<void(const QVariantMap &results)> &done)
{
    dropRequest();
    m_request = new PortalRequest(kInterface, method, arguments, options, kPersonLimit, this);
    connect(m_request, &PortalRequest::succeeded, this, done);
    connect(m_request, &PortalRequest::declined, this,
            [this] { fail(QCoreApplication::translate("GlobalShortcut", "The desktop has declined it.")); });
    connect(m_request, &PortalRequest::failed, this, [this](const QString &error) {
        qCInfo(logInput) << "[GlobalShortcut]" << error;
        fail(notOffered());
    });
}

void PortalShortcutGrabber::setTriggers(const QVariant &shortcuts)
{
    m_triggers.clear();
    for (const PortalShortcut &shortcut : qdbus_cast<QVector<PortalShortcut>>(shortcuts))
        m_triggers.insert(shortcut.id, shortcut.properties.value(QStringLiteral("trigger_description")).toString());
    emit triggersChanged({});
}

void PortalShortcutGrabber::onShortcutsChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (arguments.size() >= 2 && arguments.at(0).value<QDBusObjectPath>().path() == m_session)
        setTriggers(arguments.at(1));
}

void PortalShortcutGrabber::onActivated(const QDBusObjectPath &session, const QString &id)
{
    if (session.path() != m_session)
        return;
    for (auto one = m_bound.cbegin(); one != m_bound.cend(); ++one) {
        if (one->id == id) {
            emit pressed(one.key());
            return; // a receiver may have changed the shortcuts
        }
    }
}

void PortalShortcutGrabber::onClosed()
{
    fail(QCoreApplication::translate("GlobalShortcut", "The desktop has declined it."));
}

void PortalShortcutGrabber::dropRequest()
{
    if (!m_request)
        return;
    m_request->disconnect(this);
    m_request->deleteLater(); // it may be the one that called
    m_request = nullptr;
}

void PortalShortcutGrabber::close()
{
    dropRequest();
    m_triggers.clear();
    if (m_session.isEmpty())
        return;
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.disconnect(kService, m_session, kSessionInterface, QStringLiteral("Closed"), this, SLOT(onClosed()));
    bus.send(QDBusMessage::createMethodCall(kService, m_session, kSessionInterface, QStringLiteral("Close")));
    m_session.clear();
}

void PortalShortcutGrabber::fail(const QString &error)
{
    m_triggers.clear();
    emit triggersChanged(error);
}

} // namespace kel
