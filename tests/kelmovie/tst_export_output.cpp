#include "playback/ExportOutput.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

class ExportOutputTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        dir = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir(dir->path()).mkpath("recording/Screen"));
        write("recording/Screen/screen_record.mp4", "video");
        write("recording/TrackManager.meta", "{}");
        write("old.mp4", "old");
    }

    void findsProblems_data();
    void findsProblems();
    void moves();
    void replaces();
    void keepsOldFileWhenStopped();
    void keepsOldFileWhenTheDiskIsFull();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    void write(const QString &name, const QByteArray &content)
    {
        QFile file(path(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    QByteArray content(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    std::unique_ptr<QTemporaryDir> dir;
};

void ExportOutputTest::findsProblems_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("problem");

    QTest::newRow("new file") << "@/new.mp4"
                              << "";
    QTest::newRow("existing file") << "@/old.mp4"
                                   << "";
    QTest::newRow("beside the tracks") << "@/recording/out.mp4"
                                       << "";
    QTest::newRow("nothing") << ""
                             << "No output file given";
    QTest::newRow("directory") << "@/recording"
                               << "Output path is a directory: @/recording";
    QTest::newRow("device") << "/dev/full"
                            << "Output path is not a regular file: /dev/full";
    QTest::newRow("no directory") << "@/no/out.mp4"
                                  << "Output directory does not exist: @/no";
    QTest::newRow("file as directory") << "@/old.mp4/out.mp4"
                                       << "Output directory does not exist: @/old.mp4";
    QTest::newRow("unwritable") << "/proc/out.mp4"
                                << "Cannot write output file /proc/out.mp4: ";
    const QString ours = "Output file would overwrite a part of the recording: ";
    QTest::newRow("the video") << "@/recording/Screen/screen_record.mp4" << ours;
    QTest::newRow("would become the video") << "@/recording/Mouse/../Screen/screen_record.mkv" << ours;
    QTest::newRow("the metadata") << "@/recording/TrackManager.meta" << ours;
    QTest::newRow("the video by a link") << "@/link.mp4" << ours;
}

void ExportOutputTest::findsProblems()
{
    QFETCH(QString, output);
    QFETCH(QString, problem);

    QVERIFY(QDir(dir->path()).mkpath("recording/Mouse"));
    QVERIFY(QFile::link(path("recording/Screen/screen_record.mp4"), path("link.mp4")));
    const QStringList before = QDir(dir->path()).entryList();
    const QString found = exportOutputProblem(output.replace('@', dir->path()), path("recording"));
    QVERIFY2(problem.isEmpty() ? found.isEmpty() : found.startsWith(problem.replace('@', dir->path())),
             qPrintable(found));
    QCOMPARE(QDir(dir->path()).entryList(), before);
    QCOMPARE(content("old.mp4"), QByteArray("old"));
    QCOMPARE(content("recording/Screen/screen_record.mp4"), QByteArray("video"));
}

void ExportOutputTest::moves()
{
    write("video.mp4", "new");
    QCOMPARE(moveOverFile(path("video.mp4"), path("new.mp4"), [](qint64) { return true; }), QString());
    QCOMPARE(content("new.mp4"), QByteArray("new"));
    QVERIFY(!QFile::exists(path("video.mp4")));
}

void ExportOutputTest::replaces()
{
    const QByteArray large(5'000'000, 'x');
    write("video.mp4", large);
    QFile::setPermissions(path("old.mp4"), QFile::ReadOwner | QFile::WriteOwner);
    qint64 last = 0;
    QCOMPARE(moveOverFile(path("video.mp4"), path("old.mp4"),
                          [&](qint64 copied) {
                              const bool rises = copied > last && content("old.mp4") == "old";
                              last = copied;
                              return rises;
                          }),
             QString());
    QCOMPARE(last, qint64(large.size()));
    QVERIFY(content("old.mp4") == large);
    QVERIFY(!QFile::exists(path("video.mp4")));
    QVERIFY(!(QFile::permissions(path("old.mp4")) & QFile::ReadOther));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files), QStringList{"old.mp4"});
}

void ExportOutputTest::keepsOldFileWhenStopped()
{
    write("video.mp4", QByteArray(5'000'000, 'x'));
    QVERIFY(!moveOverFile(path("video.mp4"), path("old.mp4"), [](qint64) { return false; }).isEmpty());
    QCOMPARE(content("old.mp4"), QByteArray("old"));
    QVERIFY(!moveOverFile(path("missing.mp4"), path("old.mp4"), [](qint64) { return true; }).isEmpty());
    QCOMPARE(content("old.mp4"), QByteArray("old"));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files), (QStringList{"old.mp4", "video.mp4"}));
}

void ExportOutputTest::keepsOldFileWhenTheDiskIsFull()
{
    write("video.mp4", QByteArray(5'000'000, 'x'));
    rlimit limit{};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit before = limit;
    limit.rlim_cur = 3'000'000;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const QString problem = moveOverFile(path("video.mp4"), path("old.mp4"), [](qint64) { return true; });
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    QVERIFY(!problem.isEmpty());
    QCOMPARE(content("old.mp4"), QByteArray("old"));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files), (QStringList{"old.mp4", "video.mp4"}));
}

QTEST_GUILESS_MAIN(ExportOutputTest)
#include "tst_export_output.moc"
