#include "session/SessionSocket.h"
#include "support/EnvironmentChange.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using namespace kel;

class SessionSocketTest : public QObject
{
    Q_OBJECT

private slots:
    void directoryIsPrivate_data();
    void directoryIsPrivate();
    void otherUsersDoNotCount();
};

void SessionSocketTest::directoryIsPrivate_data()
{
    QTest::addColumn<QString>("runtimeDir");
    QTest::addColumn<bool>("isUsed");

    QTest::newRow("private") << "private" << true;
    QTest::newRow("new") << "new" << true;
    QTest::newRow("open to others") << "open" << false;
    QTest::newRow("link") << "link" << false;
    QTest::newRow("relative") << "" << false;
}

void SessionSocketTest::directoryIsPrivate()
{
    QFETCH(QString, runtimeDir);
    QFETCH(bool, isUsed);

    const QTemporaryDir dir; // private itself
    QVERIFY(QDir(dir.path()).mkdir("private") && QDir(dir.path()).mkdir("open"));
    const auto ownerOnly = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    QVERIFY(QFile::setPermissions(dir.filePath("private"), ownerOnly));
    QVERIFY(QFile::setPermissions(dir.filePath("open"), ownerOnly | QFile::ReadOther | QFile::ExeOther));
    QVERIFY(QFile::link(dir.filePath("private"), dir.filePath("link")));
    const QString runtime = runtimeDir.isEmpty() ? "." : dir.filePath(runtimeDir);
    const EnvironmentChange change("XDG_RUNTIME_DIR", runtime.toUtf8());
    const EnvironmentChange cache("XDG_CACHE_HOME", dir.filePath("cache").toUtf8());

    const QString directory = SessionSocket::directory();
    QCOMPARE(directory, isUsed ? runtime : dir.filePath("cache/keldock-session"));
    QVERIFY(!(QFileInfo(directory).permissions() & (QFile::ReadGroup | QFile::ReadOther)));
    QCOMPARE(SessionSocket::serverName("name"), directory + "/name");
}

void SessionSocketTest::otherUsersDoNotCount()
{
    const QTemporaryDir dir;
    const auto isOwn = [](const QLocalServer &server) {
        QLocalSocket socket;
        socket.connectToServer(server.fullServerName());
        return socket.waitForConnected() && SessionSocket::isOwnUser(socket);
    };
    QLocalServer own;
    QVERIFY(own.listen(dir.filePath("own")));
    QVERIFY(isOwn(own));
    QVERIFY(!SessionSocket::isOwnUser(QLocalSocket()));

    if (geteuid() != 0)
        QSKIP("Only the superuser can listen as another user");
    const QTemporaryDir others;
    QVERIFY(QFile::setPermissions(others.path(), QFile::Permissions(0x7777)));
    QLocalServer other;
    QCOMPARE(seteuid(65534), 0);
    const bool isListening = other.listen(others.filePath("other"));
    QCOMPARE(seteuid(0), 0);
    QVERIFY(isListening);
    QVERIFY(!isOwn(other));
}

QTEST_GUILESS_MAIN(SessionSocketTest)
#include "tst_session_socket.moc"
