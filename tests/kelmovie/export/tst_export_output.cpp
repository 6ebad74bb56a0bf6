#include "export/ExportDirectory.h"
#include "export/ExportOutput.h"
#include "support/FileSizeLimit.h"
#include "support/Files.h"
#include "support/TestTable.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace kel;

class ExportOutputTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        dir = std::make_unique<QTemporaryDir>();
        write("recording/Screen/screen_record.mp4", "video");
        write("recording/TrackManager.meta", "{}");
        write("old.mp4", "old");
    }

    void findsProblems_data();
    void findsProblems();
    void findsLinksAndDevices_data();
    void findsLinksAndDevices();
    void moves_data();
    void moves();
    void fitsNameAndFormat();
    void removesWhatKilledExportsLeft();
    void keepsOldFile_data();
    void keepsOldFile();

private:
    QString path(const QString &name) const { return dir->filePath(name); }
    void write(const QString &name, const QByteArray &content) { writeFile(path(name), content); }
    QByteArray content(const QString &name) const { return readFile(path(name)); }

    std::unique_ptr<QTemporaryDir> dir;
    const QTemporaryDir otherDisk{"/dev/shm/kel_XXXXXX"};
};

void ExportOutputTest::findsProblems_data()
{
    const TestTable<QString, QString> row("output", "problem");
    row("new file", "@/new.mp4", "");
    row("existing file", "@/old.mp4", "");
    row("beside the tracks", "@/recording/out.mp4", "");
    row("nothing", "", "No output file given");
    row("directory", "@/recording", "Output path is a directory: @/recording");
    row("no directory", "@/no/out.mp4", "Output directory does not exist: @/no");
    row("file as directory", "@/old.mp4/out.mp4", "Output directory does not exist: @/old.mp4");
    row("unwritable", "/proc/out.mp4", "Cannot write output file /proc/out.mp4: ");
    const QString ours = "Output file would overwrite a part of the recording: ";
    row("the video", "@/recording/Screen/screen_record.mp4", ours);
    row("would become the video", "@/recording/Mouse/../Screen/screen_record.mkv", ours);
    row("the metadata", "@/recording/TrackManager.meta", ours);
}

void ExportOutputTest::findsProblems()
{
    QFETCH(QString, output);
    QFETCH(QString, problem);

    QVERIFY(QDir(dir->path()).mkpath("recording/Mouse"));
    const QStringList before = QDir(dir->path()).entryList();
    const QString found = exportOutputProblem(output.replace('@', dir->path()), path("recording"));
    QVERIFY2(problem.isEmpty() ? found.isEmpty() : found.startsWith(problem.replace('@', dir->path())),
             qPrintable(found));
    QCOMPARE(QDir(dir->path()).entryList(), before);
    QCOMPARE(content("old.mp4"), QByteArray("old"));
    QCOMPARE(content("recording/Screen/screen_record.mp4"), QByteArray("video"));
}

void ExportOutputTest::findsLinksAndDevices_data()
{
    const TestTable<QString, QString> row("output", "problem");
    row("device", "/dev/full", "Output path is not a regular file: /dev/full");
    row("the video by a link", "@/link.mp4", "Output file would overwrite a part of the recording: ");
}

void ExportOutputTest::findsLinksAndDevices()
{
    QVERIFY(QFile::link(path("recording/Screen/screen_record.mp4"), path("link.mp4")));
    findsProblems();
}

void ExportOutputTest::moves_data()
{
    const TestTable<bool, QString, QString> row("isCopied", "name", "destination");
    for (bool isCopied : {false, true}) {
        const QByteArray origin = isCopied ? " from another disk" : "";
        row("new" + origin, isCopied, "new.mp4", "new.mp4");
        row("over a file" + origin, isCopied, "old.mp4", "old.mp4");
        row("over the target of a link" + origin, isCopied, "link.mp4", "recording/Screen/screen_record.mp4");
    }
}

void ExportOutputTest::moves()
{
    QFETCH(bool, isCopied);
    QFETCH(QString, name);
    QFETCH(QString, destination);

    const QByteArray large(5'000'000, 'x');
    const QString from = isCopied ? otherDisk.filePath("video.mp4") : path("video.mp4");
    QFile video(from);
    QVERIFY(video.open(QIODevice::WriteOnly) && video.write(large) == large.size());
    video.close();
    QVERIFY(QFile::link(path("recording/Screen/screen_record.mp4"), path("link.mp4")));
    const bool isNew = !QFile::exists(path(destination));
    const QByteArray before = content(destination);
    if (!isNew)
        QVERIFY(QFile::setPermissions(path(destination), QFile::ReadOwner | QFile::WriteOwner));
    qint64 last = -1;
    const auto shouldContinue = [&](qint64 copied) {
        const bool rises = copied > last && content(destination) == before;
        last = copied;
        return rises;
    };
    QCOMPARE(moveOverFile(from, path(name), shouldContinue), QString());
    QCOMPARE(last, isCopied ? qint64(large.size()) : 0);
    QVERIFY(content(destination) == large);
    QVERIFY(!QFile::exists(from));
    QVERIFY(isNew || !(QFile::permissions(path(destination)) & QFile::ReadOther));
    QCOMPARE(QFileInfo(path("link.mp4")).isSymLink(), true);
}

void ExportOutputTest::fitsNameAndFormat()
{
    QCOMPARE(exportOutputProblem(path("new.mp4"), path("a removed recording")), QString());
    const QStringList fitting{"out.mp4 out.MOV out.mkv out.m4v", "out.gif", "out.apng out.PNG", "out.webp"};
    const QString others = "out out.part rec.2026-01-02 .mp4x";
    for (int format = 0; format < 4; ++format) {
        for (int of = 0; of < 4; ++of) {
            for (const QString &name : fitting[of].split(' '))
                QCOMPARE(exportFormatProblem(name, format).isEmpty(), of == format);
        }
        for (const QString &name : others.split(' '))
            QCOMPARE(exportFormatProblem(name, format), QString());
        QVERIFY(!exportFormatProblem("out.wav", format).isEmpty());
    }
    QCOMPARE(exportFormatProblem("/a/out.wav", 2),
             QString("The suffix of /a/out.wav stands for another format; use .apng, .png"));
}

void ExportOutputTest::removesWhatKilledExportsLeft()
{
    for (const char *name : {".kel_export_killed", ".kel_export_unknown", ".kel_exported", "elsewhere"})
        QVERIFY(QDir(path(name)).mkpath("sub"));
    write(".kel_export_killed/lock", "");
    write(".kel_export_killed/sub/half.mp4", "half");
    write("elsewhere/lock", "");
    QVERIFY(QFile::link(path("elsewhere"), path(".kel_export_link")));
    const ExportDirectory running(dir->path());
    const ExportDirectory next(dir->path());
    QVERIFY(!QFile::exists(path(".kel_export_killed")));
    for (const QString &kept :
         {running.path(), next.path(), path(".kel_export_link"), path(".kel_export_unknown"), path(".kel_exported")})
        QVERIFY2(QFileInfo(kept).isDir(), qPrintable(kept));
    QVERIFY(QFile::exists(path("elsewhere/lock")));
}

void ExportOutputTest::keepsOldFile_data()
{
    const TestTable<bool, bool, qint64, qint64> row("isSourceThere", "continues", "size", "room");
    row("cancelled", true, false, 5'000'000, -1);
    row("nothing to move", false, true, 0, -1);
    row("full disk", true, true, 5'000'000, 3'000'000);
    row("full at the end", true, true, 14'000, 12'288); // less than a buffer
}

void ExportOutputTest::keepsOldFile()
{
    QFETCH(bool, isSourceThere);
    QFETCH(bool, continues);
    QFETCH(qint64, size);
    QFETCH(qint64, room);

    const QString from = otherDisk.filePath("video.mp4");
    QFile::remove(from);
    QFile video(from);
    if (isSourceThere)
        QVERIFY(video.open(QIODevice::WriteOnly) && video.resize(size));
    video.close();
    QString problem;
    const auto move = [&] { problem = moveOverFile(from, path("old.mp4"), [&](qint64) { return continues; }); };
    if (room < 0) {
        move();
    } else {
        const FileSizeLimit limit(room);
        move();
        QCOMPARE(problem, FileSizeLimit::errorText());
    }
    QVERIFY(!problem.isEmpty());
    QCOMPARE(content("old.mp4"), QByteArray("old"));
    QCOMPARE(QDir(dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList{"old.mp4"});
    QCOMPARE(QFile::exists(from), isSourceThere);
}

QTEST_GUILESS_MAIN(ExportOutputTest)
#include "tst_export_output.moc"
