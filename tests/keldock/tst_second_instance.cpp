#include "keldock/Keldock.h"
#include "support/ScratchHome.h"

#include <QtTest>

#include <algorithm>
#include <array>

/// However many are started at the same time: one stays.
class SecondInstanceTest : public QObject
{
    Q_OBJECT

private slots:
    void oneStays();

private:
    ScratchHome m_home; // the instances of other people are none of ours
};

void SecondInstanceTest::oneStays()
{
    // The second round meets what the killed program of the first has left behind.
    for (int round = 0; round < 2; ++round) {
        std::array<QProcess, 4> programs;
        for (QProcess &program : programs)
            program.start(QStringLiteral(KELDOCK_PROGRAM), QStringList());
        const auto running = [&] {
            return std::count_if(programs.begin(), programs.end(),
                                 [](const QProcess &program) { return program.state() != QProcess::NotRunning; });
        };
        QTRY_COMPARE_WITH_TIMEOUT(running(), 1, Keldock::LimitMs);
        QCOMPARE(Keldock::run({}).status, 0); // a later one leaves the first alone as well
        QCOMPARE(running(), 1);
        for (QProcess &program : programs) {
            if (program.state() == QProcess::NotRunning) {
                QCOMPARE(program.exitCode(), 0);
            } else {
                program.kill();
                QVERIFY(program.waitForFinished(Keldock::LimitMs));
            }
        }
    }
}

QTEST_GUILESS_MAIN(SecondInstanceTest)
#include "tst_second_instance.moc"
