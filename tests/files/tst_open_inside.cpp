#include "files/OpenInside.h"
#include "support/FileNames.h"
#include "support/Files.h"
#include "support/TestTable.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace kel;

class OpenInsideTest : public QObject
{
    Q_OBJECT

private slots:
    void opens_data() { addFileNames(); }
    void opens();
    void refuses_data();
    void refuses();

private:
    QTemporaryDir m_dir;
};

void OpenInsideTest::opens()
{
    QFETCH(QString, name);
    const QString root = m_dir.filePath(name);
    writeFile(root + "/track/" + name, "0123456789");
    QStringList dirs{root};
#ifdef Q_OS_UNIX // what Qt creates on Windows is not a link to the system
    dirs << m_dir.filePath("link");
    QFile::remove(dirs[1]);
    QVERIFY(QFile::link(root, dirs[1])); // only what is inside the directory is not trusted
#endif
    for (const QString &dir : qAsConst(dirs)) {
        QFile file;
        QCOMPARE(openInside(&file, dir, "track/" + name), QString());
        QCOMPARE(file.size(), qint64(10));
        QVERIFY(file.seek(4) && !file.isSequential());
        QCOMPARE(file.readAll(), QByteArray("456789"));
        QVERIFY(!file.isWritable());
    }
}

void OpenInsideTest::refuses_data()
{
    const TestTable<QString, QString> row("name", "problem");
    row("nothing there", "missing", "No such file");
    row("an empty name", "", "No such file");
    row("a directory", "track", "track is not an ordinary file");
    row("a file as directory", "file/file", "Not a directory");
    row("a pipe", "pipe", "pipe is not an ordinary file");
    row("a socket", "socket", "socket is not an ordinary file");
    row("a link to the outside", "out", "out is a link");
    row("a link to the inside", "in", "in is a link");
    row("a link to nothing", "dangling", "dangling is a link");
    row("a link to a device", "zero", "zero is a link");
    row("a directory that is a link", "dir/file", "dir is a link");
    row("a way out", "track/../../secret", "..");
    row("a way out behind a null", QString("track/..") + QChar(0) + "/../secret", "..");
    row("an absolute name", "/etc/passwd", "No such file");
}

void OpenInsideTest::refuses()
{
    QFETCH(QString, name);
    QFETCH(QString, problem);
    const QTemporaryDir top;
    const QString root = top.filePath("root");
    writeFile(top.filePath("secret"), "secret");
    writeFile(root + "/file", "content");
    writeFile(root + "/track/file", "content");
    for (const auto &[link, target] : {std::pair("out", "../secret"),
                                       {"in", "file"},
                                       {"dangling", "missing"},
                                       {"zero", "/dev/zero"},
                                       {"dir", "track"}})
        QVERIFY(QFile::link(target, root + '/' + link));
    QCOMPARE(QProcess::execute("mkfifo", {root + "/pipe"}), 0);
    const QString socket("import socket, sys; socket.socket(socket.AF_UNIX).bind(sys.argv[1])");
    QCOMPARE(QProcess::execute("python3", {"-c", socket, root + "/socket"}), 0);

    QFile file;
    const QString reported = openInside(&file, root, name);
    QVERIFY2(reported.contains(problem), qPrintable(reported));
    QVERIFY(!file.isOpen());
}

QTEST_GUILESS_MAIN(OpenInsideTest)
#include "tst_open_inside.moc"
