#include "keldock/Keldock.h"
#include "support/ScratchHome.h"

#include <QtTest>

#include <algorithm>
#include <array>

/// Of several instances that are started at the same time, one stays.
class SecondInstanceTest : public QObject
{
    Q_OBJECT

private slots:
    void oneStays()
    {
        // In the second round, the killed program of the first has left its files behind.
        for (int round = 0; round < 2; ++round) {
            std::array<QProcess, 4> programs;
            for (QProcess &program : programs)
                program.start(KELDOCK_PROGRAM, QStringList());
            const auto running = [&] {
                return std::count_if(programs.begin(), programs.end(),
                                     [](const QProcess &program) { return program.state() != QProcess::NotRunning; });
            };
            QTRY_COMPARE_WITH_TIMEOUT(running(), 1, Keldock::kLimitMs);
            QCOMPARE(Keldock::run({}).status, 0); // a later instance ends as well
            QCOMPARE(running(), 1);
            for (QProcess &program : programs) {
                if (program.state() == QProcess::NotRunning) {
                    QCOMPARE(program.exitCode(), 0);
                } else {
                    program.kill();
                    QVERIFY(program.waitForFinished(Keldock::kLimitMs));
                }
            }
        }
    }

    void startsWithoutPrivateDirectory()
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char *name : {"XDG_RUNTIME_DIR", "XDG_CACHE_HOME"})
            environment.insert(name, "/proc/none");
        std::array<QProcess, 2> programs;
        for (QProcess &program : programs) {
            program.setProcessEnvironment(environment);
            program.setReadChannel(QProcess::StandardError);
            program.start(KELDOCK_PROGRAM, QStringList());
            QTRY_VERIFY_WITH_TIMEOUT(program.peek(10000).contains("[SingleInstance]"), Keldock::kLimitMs);
        }
        for (QProcess &program : programs) {
            QCOMPARE(program.state(), QProcess::Running);
            program.terminate(); // a program that runs completely stops in order
            QVERIFY(program.waitForFinished(Keldock::kLimitMs));
            QCOMPARE(program.exitStatus(), QProcess::NormalExit);
            QCOMPARE(program.exitCode(), 0);
        }
    }

private:
    ScratchHome m_home; // isolates the test from other instances
};

QTEST_GUILESS_MAIN(SecondInstanceTest)
#include "tst_second_instance.moc"
