#include "keldock/ColorScene.h"
#include "keldock/Keldock.h"
#include "keldock/RecordingFiles.h"
#include "support/FileSizeLimit.h"
#include "support/StopSignals.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

/// Exporting from the command line, with the real program.
class ExportJourneyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void exports_data();
    void exports();
    void refusesExport_data();
    void refusesExport();
    void refusesDevice();
    void fullDiskKeepsOldFiles();
    void exportsRecordedPixels();
    void cancelledExportLeavesNothing();
    void showsProgressOnTerminal();
    void damagedRecording_data();
    void damagedRecording();

private:
    QString path(const QString &name) const { return m_scratch.filePath(name); }

    QTemporaryDir m_scratch;
    QString m_recording;
};

void ExportJourneyTest::initTestCase()
{
    takeSignals();
    const ColorScene scene(QRect(0, 0, 160, 120));
    m_recording = path("recording");
    const Keldock recorded =
        Keldock::run({"record", "--area", "0,0,160x120", "--fps", "20", "--duration", "1.5", "--out", m_recording});
    QVERIFY2(recorded.status == 0, qPrintable(recorded.errors));
}

void ExportJourneyTest::exports_data()
{
    const TestTable<QString, QStringList, int, QByteArray> row("name", "options", "offset", "signature");
    row("mp4", "a.mp4", {}, 4, "ftyp");
    row("gif, part", "a.gif", {"--from", "300", "--to", "900", "--fps", "10"}, 0, "GIF89a");
    row("apng, faster", "a.png", {"--speed", "3"}, 1, "PNG");
    row("webp, to the end", "a.webp", {"--from", "1000", "--quality", "40"}, 8, "WEBP");
    row("format by option", "a.bin", {"--format", "gif"}, 0, "GIF89a");
    row("non-ASCII name", QString::fromUtf8("录制.mp4"), {}, 4, "ftyp");
}

void ExportJourneyTest::exports()
{
    QFETCH(QStringList, options);
    QFETCH(QString, name);
    QFETCH(int, offset);
    QFETCH(QByteArray, signature);
    const QString file = path(name);
    QVERIFY(writeAll(file, "an older file"));
    const Keldock keldock = Keldock::run(QStringList{"export", m_recording, file} + options);
    QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
    QCOMPARE(keldock.errors, QString());
    QVERIFY2(!keldock.output.contains('\r'), "no progress bar in a pipe");
    QCOMPARE(readAll(file).mid(offset, signature.size()), signature);
}

void ExportJourneyTest::refusesExport_data()
{
    const TestTable<QStringList, QString> row("arguments", "reason");
    row("onto a directory", {"directory", "--format", "gif"}, "is a directory");
    row("into a missing directory", {"missing/a.gif"}, "does not exist");
    row("not writable", {"/proc/a.gif"}, "Cannot write");
    row("beyond the end", {"kept.gif", "--from", "60000"}, "is beyond the end");
}

void ExportJourneyTest::refusesExport()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, reason);
    QVERIFY(QDir().mkpath(path("directory")));
    QVERIFY(writeAll(path("kept.gif"), "an older file"));
    if (!arguments.first().startsWith('/'))
        arguments.first().prepend(m_scratch.path() + '/');
    const Keldock keldock = Keldock::run(QStringList{"export", m_recording} + arguments);
    QVERIFY2(keldock.failedWith(reason), qPrintable(keldock.errors));
    QCOMPARE(readAll(path("kept.gif")), QByteArray("an older file"));
}

void ExportJourneyTest::refusesDevice()
{
    const Keldock keldock = Keldock::run({"export", m_recording, "/dev/null", "--format", "gif"});
    QVERIFY2(keldock.failedWith("not a regular file"), qPrintable(keldock.errors));
}

void ExportJourneyTest::fullDiskKeepsOldFiles()
{
    const FileSizeLimit limit(200); // of the program, too
    for (const QStringList &arguments : {QStringList{"frame", m_recording, "5", path("full.png")},
                                         QStringList{"export", m_recording, path("full.mp4")}}) {
        QVERIFY(writeAll(arguments.last(), "an older file"));
        const Keldock keldock = Keldock::run(arguments);
        QVERIFY2(keldock.failedWith(FileSizeLimit::errorText()), qPrintable(keldock.errors));
        QCOMPARE(readAll(arguments.last()), QByteArray("an older file"));
    }
}

void ExportJourneyTest::exportsRecordedPixels()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", "2");
    const QString scaled = path("scaled");
    const Keldock recorded =
        Keldock::run({"record", "--area", "0,0,60x40", "--duration", "0.3", "--out", scaled}, environment);
    QVERIFY2(recorded.status == 0, qPrintable(recorded.errors));
    const auto exportedWidth = [&](const QStringList &options) {
        const Keldock keldock = Keldock::run(QStringList{"export", scaled, path("scaled.gif")} + options);
        return keldock.status == 0 ? qFromLittleEndian<quint16>(readAll(path("scaled.gif")).constData() + 6) : -1;
    };
    QCOMPARE(exportedWidth({}), 120);
    QCOMPARE(exportedWidth({"--size", "60x40"}), 60);
}

void ExportJourneyTest::cancelledExportLeavesNothing()
{
    const QString directory = path("cancelled");
    QVERIFY(QDir().mkpath(directory));
    QVERIFY(writeAll(directory + "/a.webp", "an older file"));
    const auto entries = [&] {
        return QDir(directory).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    QProcess process;
    // Large enough to take many times as long as a look at the directory.
    process.start(KELDOCK_PROGRAM,
                  {"export", m_recording, directory + "/a.webp", "--size", "7680x5760", "--quality", "100"});
    QTRY_VERIFY_WITH_TIMEOUT(entries().size() == 2, Keldock::kLimitMs);
    sendSignal(process, StopSignal::Interrupt);
    const Keldock keldock = Keldock::finish(process);
    QVERIFY2(keldock.failedWith("cancelled"), qPrintable(keldock.errors));
    QCOMPARE(entries(), QStringList{"a.webp"});
    QCOMPARE(readAll(directory + "/a.webp"), QByteArray("an older file"));
}

void ExportJourneyTest::showsProgressOnTerminal()
{
    // script(1) provides a terminal.
    const Keldock keldock = Keldock::runShell("export TERM=xterm; script -qec '\"'\"$0\"'\" export " + m_recording +
                                              " " + path("t.gif") + "' /dev/null");
    QVERIFY2(keldock.status == 0, qPrintable(keldock.output));
    QVERIFY2(keldock.output.contains("\rExporting t.gif"), qPrintable(keldock.output));
    QVERIFY2(keldock.output.contains("100 %"), qPrintable(keldock.output));
    QVERIFY2(keldock.output.endsWith('\n'), "the shell prompt starts on a new line");
}

void ExportJourneyTest::damagedRecording_data()
{
    // The content is null if the file is removed, empty if it is truncated to half its size.
    const TestTable<QString, QByteArray, int> row("file", "content", "status");
    const QByteArray cut("");
    const QByteArray invalid(R"({"fps":-5,"duration":"x","recordArea":{"x":"a","width":-1},"tracks":7})");
    const QString meta("TrackManager.meta");
    const QString video("Screen/screen_record.mp4");
    row("no metadata", meta, {}, 0);
    row("truncated metadata", meta, cut, 0);
    row("invalid metadata", meta, invalid, 0);
    row("metadata is an array", meta, "[1,2,3]", 0);
    row("garbage as index", "Screen/frame_indexes.dat", QByteArray(64, '\xff'), 0);
    row("no video", video, {}, 1);
    row("garbage as video", video, QByteArray(5000, 'x'), 1);
}

void ExportJourneyTest::damagedRecording()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(int, status);
    const QTemporaryDir scratch;
    const QString damaged = scratch.filePath("damaged");
    QVERIFY(copyTree(m_recording, damaged));
    const QString damagedFile = damaged + '/' + file;
    if (content.isNull())
        QVERIFY(QFile::remove(damagedFile));
    else if (content.isEmpty())
        QVERIFY(QFile::resize(damagedFile, QFileInfo(damagedFile).size() / 2));
    else
        QVERIFY(writeAll(damagedFile, content));

    for (const QStringList &arguments :
         {QStringList{"info", damaged}, QStringList{"frame", damaged, "0", scratch.filePath("a.png")},
          QStringList{"export", damaged, scratch.filePath("a.gif")}}) {
        const Keldock keldock = Keldock::run(arguments);
        QVERIFY2(keldock.status == status, qPrintable(arguments.first() + ": " + keldock.errors));
        QVERIFY(status == 0 || keldock.failedWith("cannot be played"));
    }
}

QTEST_GUILESS_MAIN(ExportJourneyTest)
#include "tst_export_journey.moc"
