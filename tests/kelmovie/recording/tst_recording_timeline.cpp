#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/SoundFile.h"
#include "playback/TimelineLoader.h"
#include "recording/FrameTableWriter.h"
#include "recording/KelRecordingFiles.h"

#include "support/TestTable.h"

#include <QtTest>

using namespace kel;

using Times = std::vector<qint64>;
Q_DECLARE_METATYPE(Times)

namespace
{
QVector<double> parts(const RecordingTimeline::Range &range)
{
    return {double(range.firstFrame), double(range.lastFrame), range.startMs, range.endMs, range.soundStartMs};
}
} // namespace

class RecordingTimelineTest : public QObject
{
    Q_OBJECT

private slots:
    void framesAreShownWhenTheyWereRecorded();
    void framesAreSpreadEvenly();
    void conversionsAgree_data();
    void conversionsAgree();
    void loads_data();
    void loads();
};

void RecordingTimelineTest::framesAreShownWhenTheyWereRecorded()
{
    const RecordingTimeline lost({33, 66, 165, 198}, 30, 250); // two ticks were lost
    const std::vector<double> appearances{0, 49.5, 115.5, 181.5, 250};
    for (int i = 0; i <= 4; ++i)
        QCOMPARE(lost.msOf(i), appearances[std::size_t(i)]);
    for (const auto &[ms, frame] :
         {std::pair(-5, 0), {33, 0}, {66, 1}, {115, 1}, {116, 2}, {165, 2}, {198, 3}, {900, 3}})
        QCOMPARE(lost.frameAt(ms), frame);
    QCOMPARE(lost.frameAfter(58, 2.0), 2);
    QCOMPARE(lost.elapsedAt(2, 0.5), qint64(231));
    QCOMPARE(lost.msAfter(100, 2.0), 200.0);
    QCOMPARE(lost.playbackRate(), 1.0);
    QVERIFY(!lost.isOver(124, 2.0) && lost.isOver(125, 2.0));
    QCOMPARE(parts(lost.rangeOf(60, 170)), (QVector<double>{1, 2, 60, 170, 60}));
    QCOMPARE(parts(lost.whole()), (QVector<double>{0, 3, 0, 250, 0}));
}

/// Ten frames that should have taken 400 ms and took 500.
void RecordingTimelineTest::framesAreSpreadEvenly()
{
    const RecordingTimeline slow(10, 25, 500);
    QCOMPARE(slow.msOf(5), 250.0);
    for (const auto &[ms, frame] : {std::pair(-5.0, 0), {249.9, 4}, {250.0, 5}, {999.0, 9}})
        QCOMPARE(slow.frameAt(ms), frame);
    QCOMPARE(slow.frameAfter(99, 2.0), 4);
    QCOMPARE(slow.frameAfter(100, 2.0), 5);
    QCOMPARE(slow.elapsedAt(5, 2.0), qint64(100));
    QCOMPARE(slow.msAfter(100, 2.0), 250.0);
    QVERIFY(!slow.isOver(199, 2.0) && slow.isOver(200, 2.0));
    QCOMPARE(slow.framesIn(100), 2);
    QCOMPARE(parts(slow.rangeOf(100, 400)), (QVector<double>{1, 7, 100, 400, 25}));
    QCOMPARE(parts(slow.rangeOf(0, 500)), (QVector<double>{0, 9, 0, 500, 0}));
    for (const auto &[durationMs, rate] : {std::pair(500, 1.25), {420, 1.0}, {380, 1.0}, {379, 0.9475}, {0, 1.0}})
        QCOMPARE(RecordingTimeline(10, 25, durationMs).playbackRate(), rate);
    QCOMPARE(RecordingTimeline(10, 30, 0).durationMs(), qint64(330)); // the clock ticks at whole ms
}

void RecordingTimelineTest::conversionsAgree_data()
{
    const TestTable<int, qint64, bool> row("frames", "durationMs", "hasTimes");
    row("one frame", 1, 40, false);
    row("one frame, times", 1, 40, true);
    row("spread evenly", 997, 33'331, false);
    row("times", 997, 33'331, true);
    row("no duration", 250, 0, false);
}

void RecordingTimelineTest::conversionsAgree()
{
    QFETCH(int, frames);
    QFETCH(qint64, durationMs);
    QFETCH(bool, hasTimes);

    std::vector<int> times;
    for (int i = 0; i < frames; ++i)
        times.push_back(int(durationMs * i / frames));
    const RecordingTimeline timeline =
        hasTimes ? RecordingTimeline(times, 30, durationMs) : RecordingTimeline(frames, 30, durationMs);
    QCOMPARE(timeline.isMeasured(), durationMs > 0);
    for (int i = 0; i < frames; ++i) {
        QCOMPARE(timeline.frameAt(timeline.msOf(i)), i);
        QCOMPARE(timeline.frameAtPosition(timeline.positionOf(i)), i);
        QCOMPARE(timeline.frameAtPosition(timeline.positionOf(i) - 1), qMax(i - 1, 0));
    }
    QCOMPARE(timeline.msOf(frames), double(timeline.durationMs()));
    QCOMPARE(timeline.frameAtPosition(timeline.durationMs()), frames - 1);
}

void RecordingTimelineTest::loads_data()
{
    // A recording of four frames at 25 a second.
    const TestTable<Times, bool, qint64, qint64, double> row("times", "isComplete", "metadataMs", "durationMs",
                                                             "lastAppearance");
    row("no times", {}, true, 400, 400, 300);
    row("times", {40, 80, 300, 340}, true, 400, 400, 320);
    row("without duration", {40, 80, 300, 340}, true, 0, 340, 320);
    row("more times than frames", {40, 80, 300, 340, 380}, true, 400, 400, 320);
    row("too few", {40, 80, 300}, true, 400, 400, 300);
    row("falling", {40, 80, 70, 340}, true, 400, 400, 300);
    row("negative", {-40, 80, 70, 340}, true, 400, 400, 300);
    row("behind the duration", {40, 80, 300, 401}, true, 400, 400, 300);
    row("killed before the times", {40, 80}, false, 90, 200, 140);
    row("killed before the index", {40, 80, 300, 340, 800}, false, 90, 840, 320);
    row("killed, no times", {}, false, 90, 160, 120);
    row("killed, sound is last", {40, 80, 300, 340}, false, 90, 1000, 320);
    row("killed, metadata is last", {40, 80, 300, 340}, false, 2000, 2000, 320);
}

void RecordingTimelineTest::loads()
{
    QFETCH(Times, times);
    QFETCH(bool, isComplete);
    QFETCH(qint64, metadataMs);
    QFETCH(qint64, durationMs);
    QFETCH(double, lastAppearance);

    RecordingOnDisk recording;
    recording.frames(4)
        .set(&KelRecordingMetadata::complete, isComplete)
        .set(&KelRecordingMetadata::durationMs, metadataMs);
    FrameTableWriter file(KelRecordingFiles::frameTimesPath(recording.path()));
    QVERIFY(times.empty() || file.update(times));
    if (QTest::currentDataTag() == QString("killed, sound is last"))
        recording.sound("microphone_20260101_000000.wav", SoundFile::numbered(1000, 1000));
    const RecordingTimeline timeline = loadTimeline(recording.path(), recording.metadata(), 4, true);
    QCOMPARE(timeline.totalFrames(), 4);
    QCOMPARE(timeline.durationMs(), durationMs);
    QCOMPARE(timeline.msOf(3), lastAppearance);
    QVERIFY(!loadTimeline(recording.path(), recording.metadata(), 4, false).hasTimes());
}

QTEST_APPLESS_MAIN(RecordingTimelineTest)
#include "tst_recording_timeline.moc"
