#include "kelmovie/support/InputFakes.h"
#include "kelmovie/support/InputFiles.h"
#include "record/KelRecordMouseTrack.h"
#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
int wallClockStep = 0; // seconds by which the system time has been adjusted
} // namespace

#ifdef Q_OS_LINUX
#include <sys/time.h>

#include <ctime>

/// The wall clock of Qt.
extern "C" int gettimeofday(timeval *result, void *) noexcept
{
    timespec now;
    clock_gettime(CLOCK_REALTIME, &now);
    *result = {now.tv_sec + wallClockStep, now.tv_nsec / 1000};
    return 0;
}
#endif

namespace
{
const QRect kArea(100, 50, 200, 100);

KelCursorShape shape(const QString &type)
{
    QPixmap pixmap(16, 12);
    pixmap.fill(type == "arrow" ? QColor(255, 0, 0, 128) : QColor(0, 200, 0, 255));
    pixmap.setDevicePixelRatio(type == "arrow" ? 2.0 : 1.0);
    return {type, pixmap, type == "arrow" ? QPoint(1, 2) : QPoint(7, 6)};
}

QPoint point(const QString &text)
{
    return {text.section(',', 0, 0).toInt(), text.section(',', 1, 1).toInt()};
}
} // namespace

class RecordMouseTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void recordsByTheRules_data();
    void recordsByTheRules();
    void nextRecordingKnowsThePointer();
    void filesByteForByte();
    void cursorsAreSavedOncePerShape();
    void eventsSurviveAFullDisk();
    void unwritableFileLeavesTheOthers();

private:
    void play(KelRecordMouseTrack &track, const QStringList &steps);
    QString path(const QString &name) const { return m_dir->filePath(name); }
    QStringList lines(const QString &name) const { return mouseEvents(path(name)); }
    std::unique_ptr<KelRecordMouseTrack> createTrack();

    ScriptedInput m_input;
    ScriptedPointer m_pointer;
    std::unique_ptr<QTemporaryDir> m_dir;
    QStringList m_failures;
};

void RecordMouseTrackTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_failures.clear();
    // The state of the pointer is kept from one recording to the next; start each test with a visible one.
    play(*createTrack(), {"at 150,70 arrow", "frame 0"});
}

std::unique_ptr<KelRecordMouseTrack> RecordMouseTrackTest::createTrack()
{
    auto track = std::make_unique<KelRecordMouseTrack>(kArea, m_dir->path());
    track->setFailureHandler(
        [this](const QString &name, const QString &problem) { m_failures << name + ": " + problem; });
    return track;
}

/// "at X,Y SHAPE", "gone", "frame N", "button CODE STATE X,Y", "somewhere CODE STATE", "wheel DELTA", "capture 0|1",
/// "checkpoint"
void RecordMouseTrackTest::play(KelRecordMouseTrack &track, const QStringList &steps)
{
    for (const QString &step : steps) {
        const QStringList words = step.split(' ');
        if (words[0] == "at")
            m_pointer.set({point(words[1]), shape(words[2])});
        else if (words[0] == "gone")
            m_pointer.set({});
        else if (words[0] == "frame")
            track.recordFrame(words[1].toInt());
        else if (words[0] == "button")
            m_input.button(words[1].toInt(), words[2].toInt(), point(words[3]));
        else if (words[0] == "somewhere")
            m_input.buttonSomewhere(words[1].toInt(), words[2].toInt());
        else if (words[0] == "wheel")
            m_input.wheel(words[1].toInt());
        else if (words[0] == "capture")
            track.setCaptureEnabled(words[1] == "1");
        else if (words[0] == "checkpoint")
            track.checkpoint(0);
        else
            QFAIL(qPrintable("no such step: " + step));
    }
}

void RecordMouseTrackTest::recordsByTheRules_data()
{
    const TestTable<QString, QString, QString> row("steps", "moves", "clicks");
    row("only movement is recorded", "at 110,60 arrow; frame 0; frame 1; at 120,60 arrow; frame 3",
        "0 move 10,10 arrow; 3 move 20,10 arrow", "");
    row("starts in the corner", "at 100,50 arrow; frame 0; at 101,50 arrow; frame 1", "1 move 1,0 arrow", "");
    row("hides once, and is not recorded when it reappears",
        "at 110,60 arrow; frame 0; gone; frame 1; frame 2; at 110,60 arrow; frame 3; frame 4; at 111,60 arrow; frame 5",
        "0 move 10,10 arrow; 1 hide -1,-1 ; 5 move 11,10 arrow", "");
    row("leaves over the edge",
        "at 299,149 arrow; frame 0; at 300,149 arrow; frame 1; at 299,150 arrow; frame 2; at 99,50 arrow; frame 3; "
        "at 100,50 arrow; frame 4; gone; frame 5",
        "0 move 199,99 arrow; 1 hide -1,-1 ; 4 move 0,0 arrow; 5 hide -1,-1 ", "");
    row("never inside", "at 5,5 arrow; frame 0; frame 1", "0 hide -1,-1 ", "");
    row("shape changes at rest, then moves",
        "at 110,60 arrow; frame 0; at 110,60 hand; frame 1; at 111,60 hand; frame 2; frame 3; at 112,60 arrow; frame "
        "4; "
        "button 1 1 112,60",
        "0 move 10,10 arrow; 2 move 11,10 hand; 4 move 12,10 arrow", "4 click 12,10 arrow [left]");
    row("press outside, release outside",
        "frame 7; button 1 1 99,60; button 1 0 99,60; button 1 1 299,149; button 1 0 310,49", "7 move 50,20 arrow",
        "7 release -1,10 arrow [left]; 7 click 199,99 arrow [left]; 7 release 210,-1 arrow [left]");
    row("buttons",
        "button 0 1 110,60; button 2 1 110,60; button 4 1 110,60; button 3 1 110,60; button 8 7 110,60; "
        "button -1 0 110,60",
        "",
        "0 click 10,10  [right]; 0 click 10,10  [middle]; 0 click 10,10  [unknown]; 0 release 10,10  [unknown]; "
        "0 release 10,10  [unknown]");
    row("buttons without a position are where the pointer is seen",
        "frame 1; at 110,60 arrow; somewhere 1 1; gone; somewhere 1 0; somewhere 2 1; somewhere 2 0; at 99,60 arrow; "
        "somewhere 1 1; somewhere 1 0",
        "1 move 50,20 arrow", "1 click 10,10 arrow [left]; 1 release 10,10 arrow [left]; 1 release -1,10 arrow [left]");
    row("wheel", "wheel 120; at 110,60 arrow; frame 2; gone; frame 3; wheel -120", "2 move 10,10 arrow; 3 hide -1,-1 ",
        "0 wheel 0,0  [] 120; 3 wheel 10,10  [] -120");
    row("capture off",
        "capture 0; frame 1; button 1 1 110,60; button 1 0 110,60; wheel 120; at 111,60 arrow; frame 2; capture 1; "
        "wheel 120",
        "1 move 50,20 arrow; 2 move 11,10 arrow", "2 wheel 11,10  [] 120");
}

void RecordMouseTrackTest::recordsByTheRules()
{
    QFETCH(QString, steps);
    const auto track = createTrack();
    QVERIFY(!m_input.isWatched(KelKeyMouseHook::Mouse));
    track->startRecording();
    play(*track, steps.split("; "));
    track->pauseRecording();
    track->startRecording();
    QVERIFY(m_input.isWatched(KelKeyMouseHook::Mouse) && !m_input.isWatched(KelKeyMouseHook::Keyboard));
    track->stopRecording(10, 1000);
    QVERIFY(!m_input.isWatched(KelKeyMouseHook::Mouse));
    track->startRecording();
    QVERIFY(m_input.isWatched(KelKeyMouseHook::Mouse));
    track->stopRecording(10, 1000);
    QTEST(lines("mousemoves-0.json").join("; "), "moves");
    QTEST(lines("mouseclicks-0.json").join("; "), "clicks");
    QCOMPARE(m_failures, QStringList());
}

/// A pointer that was hidden or outside at the end of a recording is not hidden once more at the start of the next.
void RecordMouseTrackTest::nextRecordingKnowsThePointer()
{
    for (const QString state : {"gone", "at 5,5 arrow"}) {
        play(*createTrack(), {state, "frame 0"});
        const auto next = createTrack();
        next->startRecording();
        play(*next, {"frame 0", "at 110,60 arrow", "frame 1", state, "frame 2"});
        next->stopRecording(3, 100);
        QCOMPARE(lines("mousemoves-0.json"), (QStringList{"1 move 10,10 arrow", "2 hide -1,-1 "}));
    }
}

void RecordMouseTrackTest::filesByteForByte()
{
    QElapsedTimer timer;
    timer.start();
    const auto track = createTrack();
    track->startRecording();
    track->checkpoint(0);
    QCOMPARE(readFile(path("mousemoves-0.json")), QByteArray("[\n]\n"));
    // Checkpoints in between do not change the result.
    play(*track, {"at 110,60 arrow", "frame 3", "wheel -120", "checkpoint", "checkpoint", "gone"});
    wallClockStep = -3600;
    play(*track, {"frame 4", "button 1 1 110,60", "checkpoint"});
    track->stopRecording(5, 1000);
    wallClockStep = 0;
    const qint64 elapsed = timer.elapsed();

    // The file without its timestamps, after checking that they count from the start.
    const auto withoutTimestamps = [&](const QString &name) {
        const QByteArray text = readFile(path(name));
        const QJsonDocument events = QJsonDocument::fromJson(text);
        qint64 last = 0;
        for (const QJsonValue &event : events.array()) {
            const auto timestamp = qint64(event["timestamp"].toDouble(-1));
            if (timestamp < last || timestamp > elapsed)
                return "wrong timestamp in " + QString(text);
            last = timestamp;
        }
        const QRegularExpression time(R"(\s*"timestamp": \d+,)");
        return text == events.toJson() ? QString(text).remove(time).simplified() : "not indented: " + text;
    };
    QCOMPARE(withoutTimestamps("mousemoves-0.json"),
             QString(R"([ { "action": "move", "cursor": "arrow", "frame": 3, "x": 10, "y": 10 }, )"
                     R"({ "action": "hide", "cursor": "", "frame": 4, "x": -1, "y": -1 } ])"));
    QCOMPARE(
        withoutTimestamps("mouseclicks-0.json"),
        QString(R"([ { "action": "wheel", "button": "", "cursor": "", "delta": -120, "frame": 3, "x": 10, "y": 10 }, )"
                R"({ "action": "click", "button": "left", "cursor": "arrow", "frame": 4, "x": 10, "y": 10 } ])"));

    const QByteArray first = readFile(path("mouseclicks-0.json"));
    track->stopRecording(5, 1000);
    QCOMPARE(readFile(path("mouseclicks-0.json")), first);
}

void RecordMouseTrackTest::cursorsAreSavedOncePerShape()
{
    const auto track = createTrack();
    track->startRecording();
    play(*track, {"at 110,60 hand", "frame 0"});
    QCOMPARE(QImage(path("cursors/hand.png")).size(), QSize(16, 12));
    QVERIFY(QFile::remove(path("cursors/hand.png")));
    play(*track, {"at 111,60 arrow", "frame 1", "checkpoint"});
    QCOMPARE(QJsonDocument::fromJson(readFile(path("cursor.json"))).object()["total_types"].toInt(), 2);
    play(*track, {"at 112,60 hand", "frame 2", "at 113,60 arrow", "frame 3"});
    track->stopRecording(4, 1000);
    QCOMPARE(QDir(path("cursors")).entryList(QDir::Files), QStringList{"arrow.png"}); // not written again
    QCOMPARE(QImage(path("cursors/arrow.png")).pixelColor(5, 5), QColor(255, 0, 0, 128));
    QCOMPARE(QString(readFile(path("cursor.json"))), QString(R"({
    "cursors": [
        {
            "device_pixel_ratio": 2,
            "hotspot_x": 1,
            "hotspot_y": 2,
            "id": "arrow",
            "image": "arrow.png"
        },
        {
            "device_pixel_ratio": 1,
            "hotspot_x": 7,
            "hotspot_y": 6,
            "id": "hand",
            "image": "hand.png"
        }
    ],
    "total_types": 2
}
)"));
}

void RecordMouseTrackTest::eventsSurviveAFullDisk()
{
    const auto track = createTrack();
    track->startRecording();
    play(*track, {"at 110,60 arrow", "frame 0", "button 1 1 110,60", "checkpoint"});
    const QByteArray moves = readFile(path("mousemoves-0.json"));
    LogCapture log;
    {
        const FileSizeLimit limit(quint64(moves.size() + 20));
        play(*track, {"at 120,60 arrow", "frame 1", "checkpoint", "checkpoint"});
        QCOMPARE(readFile(path("mousemoves-0.json")), moves);
        QCOMPARE(m_failures, QStringList{QString("Mouse track: cannot write %1: %2")
                                             .arg(path("mousemoves-0.json"), FileSizeLimit::errorText())});
        QCOMPARE(log.take().size(), 1);
    }
    play(*track, {"at 130,60 arrow", "frame 2"});
    track->stopRecording(3, 1000);
    QCOMPARE(lines("mousemoves-0.json"),
             (QStringList{"0 move 10,10 arrow", "1 move 20,10 arrow", "2 move 30,10 arrow"}));
    QCOMPARE(lines("mouseclicks-0.json"), QStringList{"0 click 10,10 arrow [left]"});
    QCOMPARE(m_failures.size(), 1);
}

void RecordMouseTrackTest::unwritableFileLeavesTheOthers()
{
    const QStringList all{"cursor.json", "cursors/arrow.png", "mouseclicks-0.json", "mousemoves-0.json"};
    for (const QString &obstacle : all) {
        m_dir = std::make_unique<QTemporaryDir>();
        m_failures.clear();
        QVERIFY(QDir().mkpath(path(obstacle) + "/occupied"));
        LogCapture log;
        const auto track = createTrack();
        track->startRecording();
        play(*track, {"at 110,60 arrow", "frame 0", "button 1 1 110,60", "checkpoint"});
        track->stopRecording(1, 100);
        for (const QString &name : all)
            QCOMPARE(QFileInfo(path(name)).isFile(), name != obstacle);
        QCOMPARE(m_failures.size(), 1);
        QVERIFY2(m_failures[0].startsWith("Mouse track: cannot write " + path(obstacle)), qPrintable(m_failures[0]));
        QCOMPARE(log.take().size(), 1);
    }
}

QTEST_MAIN(RecordMouseTrackTest)
#include "tst_record_mouse_track.moc"
