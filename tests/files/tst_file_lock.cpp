#include "files/FileLock.h"
#include "support/Files.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>

using namespace kel;

namespace
{
constexpr int kLimitMs = 30'000;

/// The main function of the process that holds the lock until it is killed.
int hold(const QString &path)
{
    FileLock lock;
    if (lock.acquire(path) != FileLock::Result::Acquired)
        return 1;
    std::puts("held");
    std::fflush(stdout);
    return std::getchar();
}
} // namespace

class FileLockTest : public QObject
{
    Q_OBJECT

private slots:
    void endsWithItsProcess();
    void isRemovedWhenReleased();
    void refusesLinks();

private:
    QTemporaryDir m_dir;
    const QString m_path = m_dir.filePath("lock");
};

void FileLockTest::endsWithItsProcess()
{
    QCOMPARE(FileLock::stateOf(m_path), FileLock::State::None);
    QProcess holder;
    holder.start(QCoreApplication::applicationFilePath(), {"hold", m_path});
    QVERIFY(holder.waitForReadyRead(kLimitMs));
    FileLock lock;
    for (int i = 0; i < 3; ++i) { // looking at it does not release it
        QCOMPARE(FileLock::stateOf(m_path), FileLock::State::Held);
        QCOMPARE(lock.acquire(m_path), FileLock::Result::HeldElsewhere);
    }

    holder.kill();
    QVERIFY(holder.waitForFinished(kLimitMs));
    QCOMPARE(FileLock::stateOf(m_path), FileLock::State::Abandoned);
    QCOMPARE(lock.acquire(m_path), FileLock::Result::Acquired);
    QCOMPARE(FileLock::stateOf(m_path), FileLock::State::Held);
}

void FileLockTest::isRemovedWhenReleased()
{
    FileLock lock;
    QCOMPARE(lock.acquire(m_path), FileLock::Result::Acquired);
    QCOMPARE(FileLock().acquire(m_path), FileLock::Result::HeldElsewhere);
    QCOMPARE(FileLock::stateOf(m_path), FileLock::State::Held);
    lock.release();
    QVERIFY(!QFileInfo::exists(m_path));
    QCOMPARE(FileLock().acquire(m_path), FileLock::Result::Acquired);

    QCOMPARE(lock.acquire(m_dir.filePath("missing/lock")), FileLock::Result::Failed);
    QVERIFY(!lock.errorString().isEmpty());
}

void FileLockTest::refusesLinks()
{
    writeFile(m_dir.filePath("other"), "content");
    if (!QFile::link(m_dir.filePath("other"), m_path) || !QFileInfo(m_path).isSymLink())
        QSKIP("needs symbolic links");
    FileLock lock;
    QCOMPARE(lock.acquire(m_path), FileLock::Result::Failed);
    QVERIFY(QFileInfo(m_path).isSymLink());
    QCOMPARE(FileLock::stateOf(m_path), FileLock::State::None);
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == "hold")
        return hold(arguments.value(2));
    FileLockTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_file_lock.moc"
