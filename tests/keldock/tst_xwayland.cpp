#include "keldock/Keldock.h"
#include "support/EnvironmentChange.h"
#include "support/x11/XServer.h"

#include <QTemporaryDir>
#include <QtTest>

/// Where nothing but XWayland can be reached, whose screen is black and whose pointer stands still for others.
class XWaylandTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { qunsetenv("WAYLAND_DISPLAY"); }

    void refusesToRecord_data()
    {
        QTest::addColumn<QStringList>("tracks");
        QTest::newRow("screen") << QStringList{"--no-mouse"};
        QTest::newRow("everything") << QStringList{"--mouse", "--keyboard"};
    }

    void refusesToRecord()
    {
        QFETCH(QStringList, tracks);
        const QTemporaryDir scratch;
        const QString out = scratch.filePath("out");
        const Keldock keldock =
            Keldock::run(QStringList{"record", "--area", "0,0,64x64", "--duration", "1", "--out", out} + tracks);
        QVERIFY2(keldock.failedWith("choose an X11 session"), qPrintable(keldock.errors));
        QVERIFY(!QFile::exists(out));
    }

    void failsTheSelfTest()
    {
        const Keldock keldock = Keldock::run({"selftest"});
        QCOMPARE(keldock.status, 1);
        const QString all = keldock.output + keldock.errors;
        QVERIFY2(all.contains("none: The screen cannot be captured: this is a Wayland session"), qPrintable(all));
    }

    void recordsAnotherXServerInTheSession()
    {
        const XServer server;
        const EnvironmentChange display("DISPLAY", server.display());
        const QTemporaryDir scratch;
        const Keldock keldock = Keldock::run(
            {"record", "--area", "0,0,64x64", "--duration", "0.2", "--mouse", "--out", scratch.filePath("out")});
        QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
    }
};

QTEST_GUILESS_MAIN(XWaylandTest)
#include "tst_xwayland.moc"
