#include "files/PrivateFile.h"
#include "support/Files.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace kel;

namespace
{
constexpr QIODevice::OpenMode kCreate = QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered;
constexpr QIODevice::OpenMode kContinue = QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered;
constexpr auto kOwner = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;
} // namespace

class PrivateFileTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }
    void isLikeAnyFile();
    void isReadableByItsOwnerOnly();
    void followsNoLink_data();
    void followsNoLink();

private:
    QString path(const QString &name) const { return m_dir->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void PrivateFileTest::isLikeAnyFile()
{
    PrivateFile file(path("file"));
    QVERIFY(!file.open(kContinue));
    QVERIFY(!file.errorString().isEmpty());
    for (const QByteArray content : {"longer than", "the next"}) {
        QVERIFY2(file.open(kCreate), qPrintable(file.errorString()));
        QCOMPARE(file.write(content), qint64(content.size()));
        QCOMPARE(file.fileName(), path("file"));
        file.close();
        QCOMPARE(readFile(path("file")), content);
    }
    QVERIFY(file.open(kContinue));
    QVERIFY(file.seek(4));
    QCOMPARE(file.write("last"), qint64(4));
    QVERIFY(file.resize(7));
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), QByteArray("the las"));
    file.close();

    QVERIFY(!file.open(QIODevice::WriteOnly | QIODevice::NewOnly));
    QCOMPARE(readFile(path("file")), QByteArray("the las"));
}

void PrivateFileTest::isReadableByItsOwnerOnly()
{
#ifdef Q_OS_WIN
    QSKIP("the permissions of the directory apply");
#endif
    writeFile(path("file"), "anybody's");
    QVERIFY(QFile::setPermissions(path("file"), kOwner | QFile::ReadGroup | QFile::ReadOther));
    PrivateFile file(path("file"));
    QVERIFY(file.open(kCreate));
    QCOMPARE(QFile::permissions(path("file")), kOwner);
    QCOMPARE(makePrivateDirectory(path("parent/directory")), QString());
    QCOMPARE(QFile::permissions(path("parent/directory")), kOwner | QFile::ExeOwner | QFile::ExeUser);
}

void PrivateFileTest::followsNoLink_data()
{
    // Each leads to a file or directory of the same name in "elsewhere".
    const TestTable<QString, QString> row("link", "error");
    row("file", "directory/file", "It is a link");
    row("missing file", "directory/missing", "It is a link");
    row("directory", "directory", "%1: It is a link");
}

void PrivateFileTest::followsNoLink()
{
    QFETCH(QString, link);
    QFETCH(QString, error);
    const bool isDirectory = link == "directory";
    const QString target = isDirectory ? path("elsewhere/directory") : path("elsewhere/" + link.section('/', -1));
    writeFile(path("elsewhere/directory/file"), "untouched");
    writeFile(path("elsewhere/file"), "untouched");
    if (!isDirectory)
        QVERIFY(QDir().mkpath(path("directory")));
    if (!QFile::link(target, path(link)) || !QFileInfo(path(link)).isSymLink())
        QSKIP("needs symbolic links");
    for (const QIODevice::OpenMode mode : {kCreate, kContinue}) {
        PrivateFile file(isDirectory ? path("directory/file") : path(link));
        QVERIFY(!file.open(mode));
        QCOMPARE(file.errorString(), QString(error).replace("%1", path("directory")));
    }
    QCOMPARE(makePrivateDirectory(path(link)), QString("It is a link"));
    QVERIFY(QFileInfo(path(link)).isSymLink());
    QCOMPARE(readFile(path("elsewhere/directory/file")), QByteArray("untouched"));
    QCOMPARE(readFile(path("elsewhere/file")), QByteArray("untouched"));
    QVERIFY(!QFileInfo::exists(path("elsewhere/missing")));
}

QTEST_GUILESS_MAIN(PrivateFileTest)
#include "tst_private_file.moc"
