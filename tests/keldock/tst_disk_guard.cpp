#include "recorder/DiskGuard.h"

#include <QSignalSpy>
#include <QtTest>

Q_DECLARE_METATYPE(DiskGuard::Reading)

class DiskGuardTest : public QObject
{
    Q_OBJECT

private slots:
    void warnsAndStops_data();
    void warnsAndStops();
    void looksAtTheRealDisk();
};

void DiskGuardTest::warnsAndStops_data()
{
    constexpr qint64 GB = 1'000'000'000;
    constexpr qint64 MB = 1'000'000;
    QTest::addColumn<DiskGuard::Reading>("reading");
    QTest::addColumn<QString>("told");
    QTest::addColumn<bool>("mayBegin");
    const auto row = [](const char *name, const DiskGuard::Reading &reading, const char *told, bool mayBegin) {
        QTest::newRow(name) << reading << QString(told) << mayBegin;
    };
    row("plenty", {500 * GB, 10 * MB, 10'000}, "", true);
    row("just enough", {2 * GB, 0, 0}, "", true);
    row("below two gigabytes", {2 * GB - 1, 0, 0}, "low -1", true);
    row("less than five minutes at this rate", {5 * GB, 200 * MB, 10'000}, "low 240", true);
    row("just five minutes at this rate", {6200 * MB, 200 * MB, 10'000}, "", true);
    row("a rate that is not steady yet", {5 * GB, 200 * MB, 4'000}, "", true);
    row("full", {200 * MB - 1, 0, 0}, "full", false);
    row("not known", {-1, 0, 0}, "", true);
    row("deleted", {500 * GB, 0, 0, false}, "lost", true);
}

void DiskGuardTest::warnsAndStops()
{
    QFETCH(DiskGuard::Reading, reading);
    QFETCH(QString, told);
    QFETCH(bool, mayBegin);
    DiskGuard guard;
    guard.setReader([&](const QString &) { return reading; });
    QStringList heard;
    connect(&guard, &DiskGuard::low, this,
            [&](qint64, qint64 secondsLeft) { heard += QString("low %1").arg(secondsLeft); });
    connect(&guard, &DiskGuard::full, this, [&] { heard += "full"; });
    connect(&guard, &DiskGuard::directoryLost, this, [&] { heard += "lost"; });

    QCOMPARE(guard.hasRoom("dir"), mayBegin);
    guard.watch("dir");
    QCOMPARE(heard.join(' '), told);
    if (told.startsWith("low")) {
        guard.check();
        QCOMPARE(heard.size(), 1); // a person was told once
        guard.watch("next");
        QCOMPARE(heard.size(), 2);
    }
}

void DiskGuardTest::looksAtTheRealDisk()
{
    QTemporaryDir dir;
    DiskGuard guard;
    QSignalSpy lost(&guard, &DiskGuard::directoryLost);
    guard.watch(dir.path());
    QCOMPARE(lost.size(), 0);
    QVERIFY(dir.remove());
    guard.check();
    QCOMPARE(lost.size(), 1);
    QVERIFY(guard.hasRoom(dir.path() + "/not/there/yet"));
}

QTEST_GUILESS_MAIN(DiskGuardTest)
#include "tst_disk_guard.moc"
