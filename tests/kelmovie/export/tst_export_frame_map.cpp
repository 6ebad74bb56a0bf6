#include "export/ExportFrameMap.h"

#include <QMap>
#include <QtTest>

using namespace kel;

using Recording = RecordingTimeline;
using Output = ExportFrameMap::Output;
using Frames = QMap<int, int>; // output frame -> logic frame
Q_DECLARE_METATYPE(Recording)
Q_DECLARE_METATYPE(Output)

class ExportFrameMapTest : public QObject
{
    Q_OBJECT

private slots:
    void maps_data();
    void maps();
};

void ExportFrameMapTest::maps_data()
{
    QTest::addColumn<Recording>("recording");
    QTest::addColumn<Output>("output");
    QTest::addColumn<qint64>("outputFrames");
    QTest::addColumn<Frames>("frames");

    const Recording tenSeconds{250, 25, 10'000};
    const auto row = [](const char *name, const Recording &recording, const Output &output, qint64 outputFrames,
                        const Frames &frames) { QTest::newRow(name) << recording << output << outputFrames << frames; };
    row("as recorded", tenSeconds, {25, 1.0}, 250, {{0, 0}, {1, 1}, {124, 124}, {249, 249}});
    row("double speed", tenSeconds, {25, 2.0}, 125, {{0, 0}, {1, 2}, {62, 125}, {123, 247}, {124, 249}});
    row("half speed", tenSeconds, {25, 0.5}, 500, {{0, 0}, {1, 0}, {2, 1}, {498, 249}, {499, 249}});
    row("halves are rounded up", {6, 25, 11'000}, {1, 1.0}, 11, {{0, 0}, {1, 1}, {2, 1}, {3, 2}, {9, 5}, {10, 5}});
    row("other frame rate", tenSeconds, {10, 1.0}, 100, {{0, 0}, {1, 3}, {99, 249}});
    row("incomplete frames are dropped", {250, 25, 1'039}, {25, 1.0}, 25, {{24, 249}});
    row("range", tenSeconds, {25, 1.0, 2'000, 4'000}, 50, {{0, 49}, {1, 50}, {49, 99}});
    row("range of no length", tenSeconds, {25, 1.0, 4'000, 4'000}, 1, {{0, 99}});
    row("range that ends before it starts", tenSeconds, {25, 1.0, 4'000, 2'000}, 1, {{0, 99}});
    row("range beyond the end", tenSeconds, {25, 1.0, 9'000, 20'000}, 275, {{0, 224}, {274, 249}});
    row("half a range is ignored", tenSeconds, {25, 1.0, 4'000, -1}, 250, {{0, 0}, {249, 249}});
    row("one logic frame", {1, 25, 40}, {25, 1.0}, 1, {{0, 0}});
    row("one long logic frame", {1, 25, 4'000}, {25, 1.0}, 100, {{0, 0}, {99, 0}});
    row("shorter than a frame", {2, 25, 10}, {25, 1.0}, 1, {{0, 0}});
    row("no duration", {250, 25, 0}, {25, 1.0}, 250, {{0, 0}, {249, 249}});
    row("no duration, range", {250, 25, 0}, {25, 1.0, 2'000, 4'000}, 50, {{0, 49}, {49, 99}});
    row("no duration, one frame", {1, 25, 0}, {25, 1.0}, 1, {{0, 0}});
    row("32 bits wrap", {108'001, 30, 3'600'000}, {25, 1.0, 0, 45'000}, 1'125, {{0, 0}, {1'124, 156}});
    row("32 bits wrap below zero", {108'001, 30, 3'600'000}, {25, 1.0, 0, 60'000}, 1'500, {{0, 0}, {1'499, 0}});
    row("long recording", {108'001, 30, 3'600'000}, {25, 1.0, 3'000'000, 3'060'000, true}, 1'500,
        {{0, 90'000}, {1'499, 91'800}});
    // At 10 frames a second; two seconds were lost after the first.
    std::vector<int> times;
    for (int i = 1; i <= 20; ++i)
        times.push_back(i * 100 + (i > 10 ? 2'000 : 0));
    const RecordingTimeline lost(times, 10, 4'000);
    row("times", lost, {10, 1.0}, 40,
        {{0, 0}, {1, 1}, {9, 9}, {10, 9}, {19, 9}, {20, 10}, {29, 10}, {30, 10}, {31, 11}, {38, 18}, {39, 19}});
    row("times, range", lost, {5, 2.0, 500, 3'500}, 7, {{0, 4}, {1, 9}, {2, 9}, {3, 9}, {4, 10}, {5, 10}, {6, 14}});
    row("times, one output frame", lost, {1, 10.0, 500, 3'500}, 1, {{0, 4}});
    row("very slow", tenSeconds, {25, 1e-300}, 1'000'000'000'000'000, {{0, 0}, {1'000'000, 0}});
}

void ExportFrameMapTest::maps()
{
    QFETCH(Recording, recording);
    QFETCH(Output, output);
    QFETCH(qint64, outputFrames);
    QFETCH(Frames, frames);

    const ExportFrameMap map(recording, output);
    QCOMPARE(map.outputFrames(), outputFrames);
    for (auto it = frames.cbegin(); it != frames.cend(); ++it)
        QCOMPARE(qMakePair(it.key(), map.logicFrame(it.key())), qMakePair(it.key(), it.value()));
}

QTEST_APPLESS_MAIN(ExportFrameMapTest)
#include "tst_export_frame_map.moc"
