#include "keldock/RecordedScene.h"
#include "support/StopSignals.h"
#include "support/TestTable.h"

#include <QDir>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

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
    void fullDiskKeepsRecording();
    void goesOnWithoutTheMouse();
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
    const ColorScene scene(SceneRect);
    m_recording = path("recording");
    m_recorded = Keldock::run(
        {"record", "--area", Area, "--fps", "20", "--duration", "1.5", "--out", m_recording, "--keyboard"});
    QVERIFY2(m_recorded.status == 0, qPrintable(m_recorded.errors));
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
    int first = -1;
    int previous = 0;
    for (const int frame : {0, frames / 2, frames - 1}) {
        const QString file = path("frame.png");
        const Keldock keldock = Keldock::run({"frame", m_recording, QString::number(frame), file});
        QVERIFY2(keldock.status == 0, qPrintable(keldock.errors));
        const QImage image(file);
        QCOMPARE(image.size(), SceneRect.size());
        const int step = ColorScene::step(image.pixelColor(160, 120));
        QVERIFY(step >= 0);
        if (first < 0)
            first = step;
        const int passed = (step - first + ColorScene::Steps) % ColorScene::Steps; // the scene begins anew
        QVERIFY2(passed >= previous, "the screen's colours, in their order");
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
    const ColorScene scene(SceneRect);
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
    const ColorScene scene(SceneRect);
    const QString out = path("killed");
    QProcess process;
    startRecording(process, out);
    process.kill();
    QVERIFY(process.waitForFinished(Keldock::LimitMs));

    const QJsonObject told = recordingInfo(out);
    QCOMPARE(told.value("complete").toBool(true), false);
    QVERIFY(told.value("videoFrames").toInt() > 0);
    QVERIFY(Keldock::run({"info", out}).output.contains("interrupted"));
    const Keldock exported = Keldock::run({"export", out, path("killed.mp4")});
    QVERIFY2(exported.status == 0, qPrintable(exported.errors));
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

void RecordingJourneyTest::goesOnWithoutTheMouse()
{
    const QString blocked = path("blocked");
    QVERIFY(QDir().mkpath(blocked + "/Mouse/mousemoves-0.json"));
    const Keldock keldock =
        Keldock::run({"record", "--area", Area, "--duration", "0.5", "--keyboard", "--out", blocked});
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
