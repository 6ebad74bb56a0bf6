#include "files/RenameOver.h"
#include "support/FileNames.h"
#include "support/Files.h"

#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <atomic>
#include <memory>

using namespace kel;

class RenameOverTest : public QObject
{
    Q_OBJECT

private slots:
    void renames_data() { addFileNames(); }
    void renames();
    void keepsBothWhenItFails_data();
    void keepsBothWhenItFails();
    void waitsForAReader();

private:
    QTemporaryDir m_dir;
};

void RenameOverTest::renames()
{
    QFETCH(QString, name);
    const QString target = m_dir.filePath(name + "/target" + name.section('/', -1));
    for (const QByteArray content : {"first", "second"}) {
        writeFile(target + ".tmp", content);
        QCOMPARE(renameOver(target + ".tmp", target), QString());
        QCOMPARE(readFile(target), content);
    }
    QCOMPARE(QDir(QFileInfo(target).path()).entryList(QDir::Files).size(), 1);
}

void RenameOverTest::keepsBothWhenItFails_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::newRow("nothing to rename") << "missing"
                                       << "file";
    QTest::newRow("over a directory") << "file"
                                      << "directory";
    QTest::newRow("into a missing directory") << "file"
                                              << "missing/file";
}

void RenameOverTest::keepsBothWhenItFails()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    writeFile(m_dir.filePath("file"), "content");
    writeFile(m_dir.filePath("directory/file"), "inside");
    QVERIFY(!renameOver(m_dir.filePath(from), m_dir.filePath(to)).isEmpty());
    QCOMPARE(readFile(m_dir.filePath("file")), QByteArray("content"));
    QCOMPARE(readFile(m_dir.filePath("directory/file")), QByteArray("inside"));
}

/// Where a file that somebody has open cannot be replaced, it is once he is done.
void RenameOverTest::waitsForAReader()
{
    const QString target = m_dir.filePath("read");
    writeFile(target, "old");
    writeFile(target + ".tmp", "new");
    QFile reader(target);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    std::atomic<bool> begins{false};
    QString problem("not tried");
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        begins = true;
        problem = renameOver(target + ".tmp", target);
    }));
    thread->start();
    while (!begins)
        QThread::yieldCurrentThread();
    reader.close();
    QVERIFY(thread->wait());
    QCOMPARE(problem, QString());
    QCOMPARE(readFile(target), QByteArray("new"));
}

QTEST_GUILESS_MAIN(RenameOverTest)
#include "tst_rename_over.moc"
