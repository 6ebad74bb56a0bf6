#include "files/RenameOver.h"
#include "support/FileNames.h"
#include "support/Files.h"
#include "support/TestTable.h"

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
    void keepsBothFilesOnFailure_data();
    void keepsBothFilesOnFailure();
    void waitsForReader();

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

void RenameOverTest::keepsBothFilesOnFailure_data()
{
    const TestTable<QString, QString> row("from", "to");
    row("nothing to rename", "missing", "file");
    row("over a directory", "file", "directory");
    row("into a missing directory", "file", "missing/file");
}

void RenameOverTest::keepsBothFilesOnFailure()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    writeFile(m_dir.filePath("file"), "content");
    writeFile(m_dir.filePath("directory/file"), "inside");
    QVERIFY(!renameOver(m_dir.filePath(from), m_dir.filePath(to)).isEmpty());
    QCOMPARE(readFile(m_dir.filePath("file")), QByteArray("content"));
    QCOMPARE(readFile(m_dir.filePath("directory/file")), QByteArray("inside"));
}

/// Where an open file cannot be replaced, the rename waits until it is closed.
void RenameOverTest::waitsForReader()
{
    const QString target = m_dir.filePath("read");
    writeFile(target, "old");
    writeFile(target + ".tmp", "new");
    QFile reader(target);
    QVERIFY(reader.open(QIODevice::ReadOnly));
    std::atomic<bool> hasStarted{false};
    QString error("not tried");
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        hasStarted = true;
        error = renameOver(target + ".tmp", target);
    }));
    thread->start();
    while (!hasStarted)
        QThread::yieldCurrentThread();
    reader.close();
    QVERIFY(thread->wait());
    QCOMPARE(error, QString());
    QCOMPARE(readFile(target), QByteArray("new"));
}

QTEST_GUILESS_MAIN(RenameOverTest)
#include "tst_rename_over.moc"
