#include "recorder/DiskGuard.h"
#include "support/TestTable.h"

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(DiskGuard::Reading)

class DiskGuardTest : public QObject
{
    Q_OBJECT

private slots:
    void warnsAndStops_data()
    {
        constexpr qint64 kGB = 1'000'000'000;
        constexpr qint64 kMB = 1'000'000;
        const TestTable<DiskGuard::Reading, QString, bool> row("reading", "emitted", "canStart");
        row("plenty", {500 * kGB, 10 * kMB, 10'000}, "", true);
        row("just enough", {2 * kGB, 0, 0}, "", true);
        row("below two gigabytes", {2 * kGB - 1, 0, 0}, "low -1", true);
        row("less than five minutes at this rate", {5 * kGB, 200 * kMB, 10'000}, "low 240", true);
        row("five minutes at this rate", {6200 * kMB, 200 * kMB, 10'000}, "", true);
        row("rate not settled yet", {5 * kGB, 200 * kMB, 4'000}, "", true);
        row("full", {200 * kMB - 1, 0, 0}, "full", false);
        row("not one byte left", {0, 0, 0}, "full", false);
        row("unknown", {-1, 0, 0}, "", true);
        row("deleted", {500 * kGB, 0, 0, false}, "lost", true);
    }

    void warnsAndStops()
    {
        QFETCH(DiskGuard::Reading, reading);
        QFETCH(QString, emitted);
        QFETCH(bool, canStart);
        DiskGuard guard;
        guard.setReader([&](const QString &) { return reading; });
        QStringList received;
        connect(&guard, &DiskGuard::low, this,
                [&](qint64, qint64 secondsLeft) { received += QString("low %1").arg(secondsLeft); });
        connect(&guard, &DiskGuard::full, this, [&] { received += "full"; });
        connect(&guard, &DiskGuard::directoryLost, this, [&] { received += "lost"; });

        QCOMPARE(guard.hasRoom("dir"), canStart);
        guard.watch("dir");
        QCOMPARE(received.join(' '), emitted);
        if (emitted.startsWith("low")) {
            guard.check();
            QCOMPARE(received.size(), 1); // warns once per recording
            guard.watch("next");
            QCOMPARE(received.size(), 2);
        }
    }

    void examinesTheRealDisk()
    {
        QTemporaryDir dir;
        DiskGuard guard;
        QSignalSpy lost(&guard, &DiskGuard::directoryLost);
        guard.watch(dir.path());
        QCOMPARE(lost.size(), 0);
        QVERIFY(dir.remove());
        QTRY_COMPARE_WITH_TIMEOUT(lost.size(), 1, 30000); // by its timer
        QVERIFY(guard.hasRoom(dir.path() + "/not/there/yet"));
#ifdef Q_OS_LINUX
        QVERIFY(!guard.hasRoom("/sys/not/there")); // a file system that is always full
#endif
    }
};

QTEST_GUILESS_MAIN(DiskGuardTest)
#include "tst_disk_guard.moc"
