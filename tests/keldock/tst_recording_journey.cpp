#include "keldock/RecordedScene.h"
#include "support/StopSignals.h"
#include "support/TestTable.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

/// Recording from the command line, with the real program.
class RecordingJourneyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void describesTheRecording();
    void framesShowTheScreen();
    void stopSignal_data();
    void stopSignal();
    void killedRecordingIsKept();
    void fullDiskKeepsRecording();
    void continuesWithoutTheMouse();
    void refusesToRecord_data();
    void refusesToRecord();

private:
    QString path(const QString &name) const { return m_scratch.filePath(name); }

    QTemporaryDir m_scratch;
    QString m_recording;
    Keldock m_recorded;
};

void RecordingJourneyTest::initTestCase()
{
    takeSignals();
    const ColorScene scene(kSceneRect);
    m_recording = path("recording");
    m_recorded = Keldock::run(
        {"record", "--area", kArea, "--fps", "20", "--duration", "1.5", "--out", m_recording, "--keyboard"});
    QVERIFY2(m_recorded.status == 0, qPrintable(m_recorded.errors));
}

void RecordingJourneyTest::describesTheRecording()
{
    QVERIFY2(m_recorded.errors.startsWith("keldock: everything typed on this desktop is recorded"),
             qPrintable(m_recorded.errors));
    QCOMPARE(m_recorded.errors.count('\n'), 1);
    QVERIFY2(!m_recorded.output.contains('\r'), "no terminal line in a pipe");
    const QJsonObject info = recordingInfo(m_recording);
    QCOMPARE(info.value("complete").toBool(), true);
    QCOMPARE(info.value("version").toString(), QString("1.0"));
    QCOMPARE(info.value("fps").toInt(), 20);
    QCOMPARE(info.value("recordArea").toObject(), (QJsonObject{{"x", 20}, {"y", 30}, {"width", 320}, {"height", 240}}));
    QCOMPARE(info.value("videoWidth").toInt(), 320);
    QCOMPARE(info.value("tracksPresent").toArray(), (QJsonArray{"screen", "mouse", "keyboard"}));
    const QJsonObject tracks = info.value("tracks").toObject();
    for (const char *track : {"screenTrack", "mouseTrack", "keyboardTrack"})
        QCOMPARE(tracks.value(track).toBool(), true);
    for (const char *track : {"systemAudio", "microphoneAudio"})
        QCOMPARE(tracks.value(track).toBool(), false);
    QVERIFY(info.value("duration").toInt() >= 1400);
    const int logicFrames = info.value("logicFrames").toInt();
    const int videoFrames = info.value("videoFrames").toInt();
    QVERIFY(logicFrames > 1 && videoFrames > 1 && videoFrames <= logicFrames);
    QCOMPARE(info.value("actualRecordedFrames").toInt(), logicFrames);
    for (const int number : {logicFrames, videoFrames})
        QVERIFY2(m_recorded.output.contains(QString::number(number)), qPrintable(m_recorded.output));

    const Keldock text = Keldock::run({"info", m_recording});
    QCOMPARE(text.status, 0);
    for (const char *part : {"complete", "320x240 at 20,30", "20 fps", "screen", "1.0"})
        QVERIFY2(text.output.contains(part), part);
}

void RecordingJourneyTest::framesShowTheScreen()
{
    const int frames = recordingInfo(m_recording).value("logicFrames").toInt();
    int first = -1;
    int previous = 0;
    for (const int frame : {0, frames / 2, frames - 1}) {
        const QString file = path("frame.png");
        const Keldock keldock = Keldock::run({"frame", m_recording, QString::number(frame), file});
        QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
        const QImage image(file);
        QCOMPARE(image.size(), kSceneRect.size());
        const int step = ColorScene::step(image.pixelColor(160, 120));
        QVERIFY(step >= 0);
        if (first < 0)
            first = step;
        const int passed = (step - first + ColorScene::kSteps) % ColorScene::kSteps; // the colors repeat
        QVERIFY2(passed >= previous, "the colors of the scene in order");
        QCOMPARE(image.pixelColor(0, 0), image.pixelColor(319, 239));
        previous = passed;
    }
    QVERIFY(previous > 0);
    const Keldock beyond = Keldock::run({"frame", m_recording, QString::number(frames), path("beyond.png")});
    QVERIFY2(beyond.failedWith(QString("frames 0 to %1").arg(frames - 1)), qPrintable(beyond.errors));
    QVERIFY(!QFile::exists(path("beyond.png")));
}

void RecordingJourneyTest::stopSignal_data()
{
    const TestTable<StopSignal> row("signal");
    row("Ctrl-C", StopSignal::Interrupt);
    row("shutdown", StopSignal::Terminate);
    row("closed terminal", StopSignal::HangUp);
}

void RecordingJourneyTest::stopSignal()
{
    QFETCH(StopSignal, signal);
    const ColorScene scene(kSceneRect);
    const QString out = path(QString("signal-%1").arg(int(signal)));
    QProcess process;
    startRecording(process, out);
    sendSignal(process, signal);
    const Keldock keldock = Keldock::finish(process);
    QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
    QVERIFY(keldock.output.contains("Recorded"));
    QCOMPARE(recordingInfo(out).value("complete").toBool(), true);
}

void RecordingJourneyTest::killedRecordingIsKept()
{
    const ColorScene scene(kSceneRect);
    const QString out = path("killed");
    QProcess process;
    startRecording(process, out);
    QVERIFY(Keldock::run({"info", out}).output.contains("still in progress"));
#ifdef Q_OS_UNIX
    QVERIFY(!(QFile::permissions(out) & (QFile::ReadGroup | QFile::ReadOther)));
#endif
    process.kill();
    QVERIFY(process.waitForFinished(Keldock::kLimitMs));

    const QJsonObject info = recordingInfo(out);
    QCOMPARE(info.value("complete").toBool(true), false);
    QVERIFY(info.value("videoFrames").toInt() > 0);
    QVERIFY(Keldock::run({"info", out}).output.contains("interrupted"));
    const Keldock exported = Keldock::run({"export", out, path("killed.mp4")});
    QVERIFY2(exported.status == 0, qPrintable(exported.errors));
}

void RecordingJourneyTest::fullDiskKeepsRecording()
{
    const ColorScene scene(kSceneRect);
    const QString out = path("full");
    QVERIFY(QDir().mkpath(out + "/Mouse/mousemoves-0.json")); // the mouse track fails earlier
    // A file size limit of 20 kB makes writes fail as a full disk does.
    const Keldock keldock =
        Keldock::runShell("ulimit -f 20; exec \"$0\" record --fps 30 --duration 30 --area " + kArea + " --out " + out);
    QCOMPARE(keldock.status, 1);
    QVERIFY2(keldock.errors.startsWith("keldock: ") && !keldock.errors.contains("Unknown error"),
             qPrintable(keldock.errors));
    // The last line says what ended the recording, which the mouse track did not.
    const QString last = keldock.errors.trimmed().section('\n', -1);
    QVERIFY2(last.startsWith("keldock: Screen track: "), qPrintable(keldock.errors));
    QVERIFY(recordingInfo(out).value("videoFrames").toInt() > 0);
}

void RecordingJourneyTest::continuesWithoutTheMouse()
{
    const QString blocked = path("blocked");
    QVERIFY(QDir().mkpath(blocked + "/Mouse/mousemoves-0.json"));
    const Keldock keldock =
        Keldock::run({"record", "--area", kArea, "--duration", "0.5", "--keyboard", "--out", blocked});
    QCOMPARE(keldock.status, 1);
    QVERIFY2(keldock.errors.contains("Mouse track: cannot write"), qPrintable(keldock.errors));
    QVERIFY(recordingInfo(blocked).value("duration").toInt() >= 400);
    QCOMPARE(QFileInfo(blocked + "/Keyboard/keyboard.keymeta").size(), 32);
}

void RecordingJourneyTest::refusesToRecord_data()
{
    const TestTable<QStringList, QString> row("arguments", "reason");
    row("into a directory with a recording", QStringList{"--screen", "0", "--out", "recording"},
        "already contains a recording");
    row("into a file", QStringList{"--screen", "0", "--out", "file"}, "is not a directory");
    row("below a file", QStringList{"--screen", "0", "--out", "file/below"}, "cannot be created");
    row("missing screen", QStringList{"--screen", "7", "--out", "new"}, "no screen 7");
    row("outside of all screens", QStringList{"--area", "9000,9000,64x64", "--out", "new"}, "outside of all screens");
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
