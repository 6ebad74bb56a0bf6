#include "keymouse/GlobalShortcut.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingReply>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QtTest>

#include <optional>

using namespace kel;

namespace
{

const QString kBackend = "org.freedesktop.impl.portal.desktop.test";
const QString kPath = "/org/freedesktop/portal/desktop";
const QString kInterface = "org.freedesktop.impl.portal.GlobalShortcuts";

struct BoundShortcut {
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const BoundShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BoundShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(BoundShortcut)
Q_DECLARE_METATYPE(QVector<BoundShortcut>)

/// The desktop behind the portal: binds what it is asked for to keys of its own choice.
class Desktop : public QDBusVirtualObject
{
    Q_OBJECT

public:
    uint answer = 0;
    QStringList asked;
    QString session; // that is open

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &call, const QDBusConnection &bus) override
    {
        const QVariantList arguments = call.arguments();
        if (call.member() == "GetAll")
            return bus.send(call.createReply(QVariantMap{{"version", 1u}}));
        if (call.member() == "Get")
            return bus.send(call.createReply(QVariant::fromValue(QDBusVariant(1u))));
        QVariantMap results;
        if (call.member() == "Close") {
            session.clear();
            return bus.send(call.createReply());
        }
        if (call.member() == "CreateSession")
            session = arguments.at(1).value<QDBusObjectPath>().path();
        if (call.member() == "BindShortcuts") {
            auto shortcuts = qdbus_cast<QVector<BoundShortcut>>(arguments.at(2));
            for (BoundShortcut &shortcut : shortcuts) {
                asked += QStringList{shortcut.id, shortcut.properties["description"].toString(),
                                     shortcut.properties["preferred_trigger"].toString()}
                             .join(' ');
                shortcut.properties["trigger_description"] = "keys to " + shortcut.id;
            }
            results["shortcuts"] = QVariant::fromValue(shortcuts);
        }
        return bus.send(call.createReply({answer, results}));
    }

    void press(const QString &id)
    {
        QDBusMessage signal = QDBusMessage::createSignal(kPath, kInterface, "Activated");
        signal << QVariant::fromValue(QDBusObjectPath(session)) << id << qulonglong(1) << QVariantMap();
        QDBusConnection("desktop").send(signal);
    }
};

/// Shortcuts of a Wayland session, through the real portal.
class PortalShortcutTest : public QObject
{
    Q_OBJECT

    QProcess m_portal;
    Desktop m_desktop;

    /// Starts the portal with m_desktop as its backend.
    void startPortal();

private slots:
    void initTestCase()
    {
        qDBusRegisterMetaType<BoundShortcut>();
        qDBusRegisterMetaType<QVector<BoundShortcut>>();
    }
    void cleanupTestCase()
    {
        m_portal.kill();
        m_portal.waitForFinished();
        QDBusConnection::disconnectFromBus("desktop");
    }

    void notOffered()
    {
        GlobalShortcut shortcut({"stop", "Stop it"});
        QSignalSpy changed(&shortcut, &GlobalShortcut::changed);
        QVERIFY(shortcut.setKeys(QKeySequence("Ctrl+Alt+S")));
        QTRY_COMPARE(changed.size(), 1);
        QVERIFY2(shortcut.errorString().contains("toolbar"), qPrintable(shortcut.errorString()));
        QCOMPARE(shortcut.trigger(), QString());
        QCOMPARE(shortcut.problem(), shortcut.errorString());
    }

    void offered()
    {
        startPortal();
        GlobalShortcut record({"record", "Record it"});
        GlobalShortcut stop({"stop", "Stop it"});
        QSignalSpy recordPressed(&record, &GlobalShortcut::activated);
        QSignalSpy stopPressed(&stop, &GlobalShortcut::activated);
        record.setKeys(QKeySequence("Ctrl+Alt+R"));
        stop.setKeys(QKeySequence("Meta+Shift+PgUp"));
        QCOMPARE(stop.trigger(), QString()); // not before the desktop has answered
        QTRY_COMPARE(stop.trigger(), QString("keys to stop"));
        m_desktop.asked.sort();
        QCOMPARE(m_desktop.asked, (QStringList{"record Record it CTRL+ALT+r", "stop Stop it SHIFT+LOGO+Prior"}));
        m_desktop.press("record");
        QTRY_COMPARE(recordPressed.size(), 1);
        QCOMPARE(stopPressed.size(), 0);

        // Released and grabbed again as they were, as after a look at the settings: nobody is asked again.
        record.setKeys(QKeySequence());
        record.setKeys(QKeySequence("Ctrl+Alt+R"));
        m_desktop.press("record");
        QTRY_COMPARE(recordPressed.size(), 2);
        QCOMPARE(m_desktop.asked.size(), 2);

        record.setKeys(QKeySequence("F9"));
        QTRY_COMPARE(record.trigger(), QString("keys to record"));
        QCOMPARE(m_desktop.asked.mid(2), (QStringList{"record Record it F9", "stop Stop it SHIFT+LOGO+Prior"}));
        record.setKeys(QKeySequence());
        stop.setKeys(QKeySequence());
        QTRY_COMPARE(m_desktop.session, QString());
    }

    void declined()
    {
        m_desktop.answer = 1;
        GlobalShortcut stop({"stop", "Stop it"});
        QVERIFY(stop.setKeys(QKeySequence("Ctrl+Alt+S")));
        QTRY_VERIFY2(stop.errorString().contains("declined"), qPrintable(stop.errorString()));
        QCOMPARE(stop.trigger(), QString());
    }
};

void PortalShortcutTest::startPortal()
{
    QFile description(qEnvironmentVariable("XDG_DESKTOP_PORTAL_DIR") + "/test.portal");
    QVERIFY(description.open(QIODevice::WriteOnly));
    description.write(QString("[portal]\nDBusName=%1\nInterfaces=%2;\nUseIn=%3\n")
                          .arg(kBackend, kInterface, qEnvironmentVariable("XDG_CURRENT_DESKTOP"))
                          .toUtf8());
    description.close();
    QDBusConnection bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "desktop");
    QVERIFY(bus.registerVirtualObject(kPath, &m_desktop, QDBusConnection::SubPath));
    QVERIFY(bus.registerService(kBackend));
    m_portal.setStandardErrorFile(QProcess::nullDevice());
    m_portal.start("/usr/libexec/xdg-desktop-portal", {"--replace"});
    QDBusMessage get = QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", kPath,
                                                      "org.freedesktop.DBus.Properties", "Get");
    get << "org.freedesktop.portal.GlobalShortcuts"
        << "version";
    std::optional<QDBusPendingReply<QDBusVariant>> version;
    QTRY_VERIFY_WITH_TIMEOUT(
        ((!version || version->isError() ? (void)(version = bus.asyncCall(get)) : void()), version->isValid()), 20'000);
}

QTEST_GUILESS_MAIN(PortalShortcutTest)
#include "tst_portal_shortcut.moc"
