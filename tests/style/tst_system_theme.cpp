#include "style/KelStyleTheme.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPalette>
#include <QProcess>
#include <QtTest>

namespace
{

const QString kPath = "/org/freedesktop/portal/desktop";
const QString kGroup = "org.freedesktop.appearance";
const QString kKey = "color-scheme";

enum Scheme : uint { NoPreference, PreferDark, PreferLight };

} // namespace

/// The settings interface of a desktop portal with a color scheme.
class FakePortal : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    void change(Scheme scheme)
    {
        m_scheme = scheme;
        emit SettingChanged(kGroup, kKey, QDBusVariant(uint(scheme)));
    }

public slots:
    QDBusVariant Read(const QString &group, const QString &key)
    {
        return QDBusVariant(
            QVariant::fromValue(QDBusVariant(group == kGroup && key == kKey ? uint(m_scheme) : uint(99))));
    }

signals:
    void SettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    Scheme m_scheme = PreferDark;
};

class SystemThemeTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_bus.start("dbus-daemon", {"--session", "--nofork", "--nopidfile", "--print-address"});
        QVERIFY2(m_bus.waitForReadyRead(), qPrintable(m_bus.errorString()));
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.readLine().trimmed());
    }

    void cleanupTestCase()
    {
        QDBusConnection::disconnectFromBus("portal");
        m_bus.kill();
        m_bus.waitForFinished();
    }

    void followsPortal()
    {
        FakePortal portal;
        QDBusConnection desktop = QDBusConnection::connectToBus(QDBusConnection::SessionBus, "portal");
        QVERIFY(desktop.registerService("org.freedesktop.portal.Desktop"));
        QVERIFY(desktop.registerObject(kPath, &portal,
                                       QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
        KelStyleTheme *const theme = KelStyleTheme::instance();
        const QPalette before = QGuiApplication::palette();
        QVERIFY(!theme->isDark());
        theme->setMode(KelStyleTheme::Mode::System);
        QTRY_VERIFY(theme->isDark());
        QVERIFY(isPaletteDark());

        emit portal.SettingChanged("org.example", kKey, QDBusVariant(uint(PreferLight)));
        emit portal.SettingChanged(kGroup, "contrast", QDBusVariant(uint(PreferLight)));
        portal.change(PreferLight);
        QTRY_VERIFY(!theme->isDark());
        QCOMPARE(QGuiApplication::palette().color(QPalette::Window), before.color(QPalette::Window));
        portal.change(PreferDark);
        QTRY_VERIFY(theme->isDark());
        portal.change(NoPreference);
        QTRY_VERIFY(!theme->isDark());
        QVERIFY(!isPaletteDark());

        portal.change(PreferDark);
        QTRY_VERIFY(theme->isDark());
        theme->setMode(KelStyleTheme::Mode::Light);
        QVERIFY(!theme->isDark());
        desktop.unregisterService("org.freedesktop.portal.Desktop");
    }

    void withoutPortal()
    {
        KelStyleTheme *const theme = KelStyleTheme::instance();
        theme->setMode(KelStyleTheme::Mode::System);
        QCoreApplication::processEvents();
        QVERIFY(!theme->isDark());
        theme->setMode(KelStyleTheme::Mode::Application);
    }

private:
    static bool isPaletteDark() { return QGuiApplication::palette().color(QPalette::Window).lightness() < 128; }

    QProcess m_bus;
};

QTEST_MAIN(SystemThemeTest)
#include "tst_system_theme.moc"
