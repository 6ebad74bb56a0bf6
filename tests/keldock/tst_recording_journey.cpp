#include "keldock/ColorScene.h"
#include "keldock/Keldock.h"
#include "keldock/RecordingFiles.h"
#include "support/TestTable.h"
#include "support/XServer.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

namespace
{

const QRect SceneRect(20, 30, 320, 240);
const QString Area = QStringLiteral("20,30,320x240");

} // namespace

/// From a screen to files that other programs open, with the real program.
class RecordingJourneyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void tellsWhatWasRecorded();
    void framesShowTheScreen();
    void stopSignal_data();
    void stopSignal();
    void killedRecordingIsKept();
    void lostScreenKeepsRecording();
    void fullDiskKeepsRecording();
    void goesOnWithoutInput();
    void refusesToRecord_data();
    void refusesToRecord();

private:
    QString path(const QString &name) const { return m_scratch.filePath(name); }
    void start(QProcess &process, const QString &out, const QByteArray &display = {}) const;

    QTemporaryDir m_scratch;
    QString m_recording;
    Keldock m_recorded;
};

void RecordingJourneyTest::initTestCase()
{
    std::signal(SIGINT, SIG_DFL); // a test run in the background ignores it, and so would the program
    const ColorScene scene(SceneRect);
    m_recording = path("recording");
    m_recorded = Keldock::run(
        {"record", "--area", Area, "--fps", "20", "--duration", "1.5", "--out", m_recording, "--keyboard"});
    QVERIFY2(m_recorded.status == 0, qPrintable(m_recorded.errors));
}

void RecordingJourneyTest::start(QProcess &process, const QString &out, const QByteArray &display) const
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (!display.isEmpty())
        environment.insert("DISPLAY", display);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(KELDOCK_PROGRAM), {"record", "--area", Area, "--fps", "20", "--out", out});
    QTRY_VERIFY_WITH_TIMEOUT(isUnderWay(out), Keldock::LimitMs);
}

void RecordingJourneyTest::tellsWhatWasRecorded()
{
    QVERIFY2(m_recorded.errors.startsWith("keldock: keys typed anywhere on this desktop are being recorded"),
             qPrintable(m_recorded.errors));
    QCOMPARE(m_recorded.errors.count('\n'), 1);
    QVERIFY2(!m_recorded.output.contains('\r'), "a pipe gets no fragments of a line");
    const QJsonObject told = recordingInfo(m_recording);
    QCOMPARE(told.value("complete").toBool(), true);
    QCOMPARE(told.value("version").toString(), QString("1.0"));
    QCOMPARE(told.value("fps").toInt(), 20);
    QCOMPARE(told.value("recordArea").toObject(), (QJsonObject{{"x", 20}, {"y", 30}, {"width", 320}, {"height", 240}}));
    QCOMPARE(told.value("videoWidth").toInt(), 320);
    QCOMPARE(told.value("tracksPresent").toArray(), (QJsonArray{"screen", "mouse", "keyboard"}));
    const QJsonObject tracks = told.value("tracks").toObject();
    for (const char *track : {"screenTrack", "mouseTrack", "keyboardTrack"})
        QCOMPARE(tracks.value(track).toBool(), true);
    for (const char *track : {"systemAudio", "microphoneAudio"})
        QCOMPARE(tracks.value(track).toBool(), false);
    QVERIFY(told.value("duration").toInt() >= 1400);
    const int logicFrames = told.value("logicFrames").toInt();
    const int videoFrames = told.value("videoFrames").toInt();
    QVERIFY(logicFrames > 1 && videoFrames > 1 && videoFrames <= logicFrames);
    QCOMPARE(told.value("actualRecordedFrames").toInt(), logicFrames);
    for (const int number : {logicFrames, videoFrames})
        QVERIFY2(m_recorded.output.contains(QString::number(number)), qPrintable(m_recorded.output));

    const Keldock text = Keldock::run({"info", m_recording});
    QCOMPARE(text.status, 0);
    for (const char *part : {"complete", "320x240 at 20,30", "20 a second", "screen", "1.0"})
        QVERIFY2(text.output.contains(part), part);
}

void RecordingJourneyTest::framesShowTheScreen()
{
    const int frames = recordingInfo(m_recording).value("logicFrames").toInt();
    int previous = 0;
    for (const int frame : {0, frames / 2, frames - 1}) {
        const QString file = path("frame.png");
        const Keldock keldock = Keldock::run({"frame", m_recording, QString::number(frame), file});
        QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
        const QImage image(file);
        QCOMPARE(image.size(), SceneRect.size());
        const int step = ColorScene::step(image.pixelColor(160, 120));
        QVERIFY2(step >= previous, "the screen's colours, in their order");
        QCOMPARE(image.pixelColor(0, 0), image.pixelColor(319, 239));
        previous = step;
    }
    QVERIFY(previous > 0);
    const Keldock beyond = Keldock::run({"frame", m_recording, QString::number(frames), path("beyond.png")});
    QVERIFY2(beyond.failedWith(QString("frames 0 to %1").arg(frames - 1)), qPrintable(beyond.errors));
    QVERIFY(!QFile::exists(path("beyond.png")));
}

void RecordingJourneyTest::stopSignal_data()
{
    const TestTable<int> row("signal");
    row("Ctrl-C", SIGINT);
    row("shutdown", SIGTERM);
    row("closed terminal", SIGHUP);
}

void RecordingJourneyTest::stopSignal()
{
    QFETCH(int, signal);
    const ColorScene scene(SceneRect);
    const QString out = path(QString("signal-%1").arg(signal));
    QProcess process;
    start(process, out);
    ::kill(static_cast<pid_t>(process.processId()), signal);
    const Keldock keldock = Keldock::finish(process);
    QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
    QVERIFY(keldock.output.contains("Recorded"));
    QCOMPARE(recordingInfo(out).value("complete").toBool(), true);
}

void RecordingJourneyTest::killedRecordingIsKept()
{
    const ColorScene scene(SceneRect);
    const QString out = path("killed");
    QProcess process;
    start(process, out);
    process.kill();
    QVERIFY(process.waitForFinished(Keldock::LimitMs));

    const QJsonObject told = recordingInfo(out);
    QCOMPARE(told.value("complete").toBool(true), false);
    QVERIFY(told.value("videoFrames").toInt() > 0);
    QVERIFY(Keldock::run({"info", out}).output.contains("interrupted"));
    const Keldock exported = Keldock::run({"export", out, path("killed.mp4")});
    QVERIFY2(exported.status == 0, qPrintable(exported.errors));
}

void RecordingJourneyTest::lostScreenKeepsRecording()
{
    XServer server;
    QProcess process;
    const QString out = path("lost");
    auto scene = std::make_unique<ColorScene>(SceneRect, server.display());
    start(process, out, server.display());
    scene.reset();
    server.kill();
    const Keldock keldock = Keldock::finish(process);
    QVERIFY2(keldock.status == 1, qPrintable(QString::number(keldock.status) + keldock.errors));
    QVERIFY(recordingInfo(out).value("videoFrames").toInt() > 0);
}

void RecordingJourneyTest::fullDiskKeepsRecording()
{
    const ColorScene scene(SceneRect);
    const QString out = path("full");
    // No file may grow beyond 20 kB: the same failed write as on a full disk.
    const Keldock keldock =
        Keldock::runShell("ulimit -f 20; exec \"$0\" record --fps 30 --duration 30 --area " + Area + " --out " + out);
    QCOMPARE(keldock.status, 1);
    QVERIFY2(keldock.errors.startsWith("keldock: "), qPrintable(keldock.errors));
    QVERIFY(recordingInfo(out).value("videoFrames").toInt() > 0);
}

void RecordingJourneyTest::goesOnWithoutInput()
{
    const QStringList record{"record", "--area", Area, "--duration", "0.5", "--keyboard", "--out"};
    const XServer server({"-screen", "0", "800x600x24", "-extension", "RECORD"});
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", server.display());
    const Keldock deaf = Keldock::run(record + QStringList{path("deaf")}, environment);
    QVERIFY2(deaf.status == 0, qPrintable(deaf.errors));
    QCOMPARE(deaf.errors.count("keyboard and mouse cannot be watched"), 1);
    QVERIFY2(deaf.errors.contains("RECORD") && deaf.errors.contains("going on without"), qPrintable(deaf.errors));

    const QString blocked = path("blocked");
    QVERIFY(QDir().mkpath(blocked + "/Mouse/mousemoves-0.json"));
    const Keldock keldock = Keldock::run(record + QStringList{blocked});
    QCOMPARE(keldock.status, 1);
    QVERIFY2(keldock.errors.contains("Mouse track: cannot write"), qPrintable(keldock.errors));
    QVERIFY(recordingInfo(blocked).value("duration").toInt() >= 400);
    QCOMPARE(QFileInfo(blocked + "/Keyboard/keyboard.keymeta").size(), 32);
}

void RecordingJourneyTest::refusesToRecord_data()
{
    const TestTable<QStringList, QString> row("arguments", "reason");
    row("over a recording", QStringList{"--screen", "0", "--out", "recording"}, "holds a recording already");
    row("into a file", QStringList{"--screen", "0", "--out", "file"}, "is not a directory");
    row("below a file", QStringList{"--screen", "0", "--out", "file/below"}, "cannot be created");
    row("a screen that is not there", QStringList{"--screen", "7", "--out", "new"}, "no screen 7");
    row("beside all screens", QStringList{"--area", "9000,9000,64x64", "--out", "new"}, "outside of every screen");
}

void RecordingJourneyTest::refusesToRecord()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, reason);
    QVERIFY(writeAll(path("file"), "x"));
    arguments.last().prepend(m_scratch.path() + '/');
    const QByteArray before = readAll(m_recording + "/Screen/screen_record.mp4");
    const Keldock keldock = Keldock::run(QStringList("record") + arguments + QStringList{"--duration", "1"});
    QVERIFY2(keldock.failedWith(reason), qPrintable(keldock.errors));
    QVERIFY(!QFile::exists(path("new")));
    QCOMPARE(readAll(m_recording + "/Screen/screen_record.mp4"), before);
}

QTEST_GUILESS_MAIN(RecordingJourneyTest)
#include "tst_recording_journey.moc"
