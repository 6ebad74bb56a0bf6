#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"

#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "playback/mouse/KelPlaybackMouseTrack.h"
#include "playback/mouse/PointerList.h"
#include "recording/RecordingTimeline.h"
#include "recording/input/CursorListReader.h"
#include "support/LogCapture.h"
#include "support/PaintedPart.h"
#include "support/TestTable.h"

#include <KelMovie/KelMovieConfig.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPainter>
#include <QProcess>
#include <QtTest>

#include <functional>

using namespace kel;

namespace
{

constexpr QRgb kPaper = 0xfffafaf0;

QImage paint(KelPlaybackMouseTrack &track, QSize size = QSize(300, 200), int ratio = 1)
{
    QImage image(size * ratio, QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(kPaper);
    QPainter painter(&image);
    track.paint(&painter);
    return image;
}

QRect partOf(const QImage &image)
{
    return paintedPart(image, kPaper);
}

/// A PNG whose header declares more pixels than fit into memory.
QByteArray hugePng()
{
    return QByteArray::fromHex(
        "89504e470d0a1a0a0000000d49484452000186a0000186a008060000001f8c8b3e0000000049454e44ae426082");
}

} // namespace

class PlaybackMouseTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void paintsPointerAtItsPixel();
    void hiddenPointer();
    void effectsAroundThePointer();
    void badFiles_data();
    void badFiles();
    void badCursors();
    void findsMoves();
    void worksInRecording();

private:
    QString dir() const { return recording.filePath("Mouse"); }

    RecordingOnDisk recording;
};

void PlaybackMouseTrackTest::init()
{
    recording = RecordingOnDisk();
    recording.cursor().moves("1:100,50");
}

/// The hotspot is at the recorded position, and nothing is blurred.
void PlaybackMouseTrackTest::paintsPointerAtItsPixel()
{
    // Device pixel ratios of image and target: normal, high resolution, a high-resolution image on a normal target.
    for (const auto &[imageRatio, deviceRatio] : {std::pair(1, 1), {2, 2}, {2, 1}}) {
        recording.cursor(16, imageRatio);
        KelPlaybackMouseTrack track(dir(), nullptr);
        QCOMPARE(track.errorString(), QString());
        track.seekToFrame(0); // before the first move
        QCOMPARE(partOf(paint(track)), QRect());
        track.seekToFrame(5);
        const QImage image = paint(track, {300, 200}, deviceRatio);
        if (imageRatio == deviceRatio) {
            QCOMPARE(partOf(image), QRect(QPoint(100, 50) * deviceRatio - QPoint(2, 3), QSize(16, 16)));
            QCOMPARE(image.pixelColor(QPoint(100, 50) * deviceRatio), QColor(Qt::red));
            QCOMPARE(image.pixelColor(QPoint(100, 50) * deviceRatio + QPoint(1, 0)), QColor(Qt::green));
        } else {
            QVERIFY(QRect(98, 48, 10, 10).contains(partOf(image)));
        }
        track.setEnabled(false);
        QVERIFY(!track.isVisible());
        QCOMPARE(partOf(paint(track)), QRect());
        track.paint(nullptr);
    }
}

void PlaybackMouseTrackTest::hiddenPointer()
{
    struct Case {
        const char *name;
        QPoint place;
        QString action;
        bool isShown;
        bool isShownByRule;
    };
    for (const Case &c : {Case{"at the limit", {2000, 1500}, "move", true, true},
                          {"beyond the right limit", {2001, 10}, "move", false, true},
                          {"beyond the lower limit", {10, 1501}, "move", false, true},
                          {"left of the frame", {-5, 10}, "move", true, true},
                          {"no position", {-1, -1}, "move", false, false},
                          {"hidden", {10, 10}, "hide", false, false},
                          {"unknown action", {10, 10}, "jump", true, true}}) {
        recording.moves({mouseMove(0, c.place.x(), c.place.y(), c.action)});
        KelPlaybackMouseTrack track(dir(), nullptr);
        track.seekToFrame(0);
        QVERIFY2(partOf(paint(track, {2100, 1600})).isEmpty() != c.isShown, c.name);
        KelPlaybackRules rules;
        rules.showsPointerEverywhere = true;
        const kel::RecordingTimeline timeline;
        track.setContext(timeline, rules);
        track.seekToFrame(0);
        QVERIFY2(partOf(paint(track, {2100, 1600})).isEmpty() != c.isShownByRule, c.name);
    }
}

/// Away from the clicks at (100, 50). Long effects follow the pointer.
void PlaybackMouseTrackTest::effectsAroundThePointer()
{
    recording.moves("0:220,150");
    const QRect pointer(218, 147, 16, 16);
    using Settings = std::function<void(KelPlaybackMouseTrack &)>;
    const auto imageWith = [&](
                               const QString &clicks, const Settings &set = [](auto &) {}) {
        recording.clicks(clicks);
        KelPlaybackMouseTrack track(dir(), nullptr);
        track.setClickType(5);
        track.setWheelType(1);
        track.setEffectColor(Qt::magenta);
        set(track);
        for (int frame = 0; frame <= 9; ++frame)
            track.seekToFrame(frame);
        return paint(track);
    };
    const QRect clickPart(0, 0, 200, 110);
    const QImage clicked = imageWith("3 left down, 5 left up");
    const QRect ripple = partOf(clicked.copy(clickPart));
    QVERIFY(QRect(68, 18, 64, 64).contains(ripple));
    QCOMPARE(partOf(clicked.copy(200, 110, 100, 90)).translated(200, 110), pointer);
    const QImage large = imageWith("3 left down, 5 left up", [](auto &track) { track.setEffectScale(1.5); });
    QVERIFY(partOf(large.copy(clickPart)).width() > 1.4 * ripple.width());
    QCOMPARE(imageWith("3 left down, 5 left up", [](auto &track) { track.setEffectScale(NAN); }), clicked);

    // The pointer is above the effects of clicks and below those of the wheel.
    const QRect aroundPointer(188, 118, 64, 64);
    const QImage held = imageWith("3 left down, 40 left up");
    const QImage turned = imageWith("3 wheel 120");
    for (const QImage &image : {held, turned})
        QVERIFY(aroundPointer.contains(partOf(image)) && partOf(image).contains(pointer) && partOf(image) != pointer);
    QCOMPARE(partOf(turned).bottom(), pointer.bottom()); // an arrow upwards
    QVERIFY(partOf(imageWith("3 wheel -120")).bottom() > pointer.bottom());
    QCOMPARE(held.copy(pointer), clicked.copy(pointer));
    QVERIFY(turned.copy(pointer) != clicked.copy(pointer));

    for (const auto &[clicks, set] :
         {std::pair<QString, Settings>("3 right down, 40 right up", [](auto &track) { track.setShownButtons(5); }),
          {"3 wheel 120", [](auto &track) { track.setShowWheel(false); }},
          {"3 wheel 120", [](auto &track) { track.setWheelType(0); }},
          {"3 left down, 5 left up", [](auto &track) { track.setClickType(9); }},
          {"3 left down, 5 left up", [](auto &track) { track.setEffectScale(0); }}})
        QCOMPARE(partOf(imageWith(clicks, set)), pointer);
}

void PlaybackMouseTrackTest::badFiles_data()
{
    // Null content: there is no such file.
    const TestTable<QString, QByteArray, QStringList> row("name", "content", "log");

    const char moves[] = "mousemoves-0.json", list[] = "cursor.json", clicks[] = "mouseclicks-0.json";
    const QString failed("C Failed to load mouse track JSON data");
    const QStringList noMoves{"W Failed to load mouse moves", failed};
    const QStringList noCursors{"W Failed to load cursor types", failed};
    const QStringList noClicks{"W Failed to load mouse clicks"};
    const QByteArray whole = QJsonDocument(QJsonArray{mouseMove(0, 1, 1)}).toJson();

    row("moves missing", moves, {}, {failed});
    row("moves cut off", moves, whole.left(whole.size() - 3), noMoves);
    row("moves too long", moves, whole + "[", noMoves);
    row("moves an object", moves, "{\"frame\":0}", noMoves);
    row("moves none", moves, "[]", {});
    row("moves behind a byte order mark", moves, "\xef\xbb\xbf" + whole, {});
    row("cursors missing", list, {}, {failed});
    row("cursors an array", list, "[]", noCursors);
    row("cursors without a list", list, "{\"cursors\": 5}", {});
    row("cursors too large", list, QByteArray(5'000'000, ' ') + "{}", noCursors);
    row("clicks missing", clicks, {}, {});
    row("clicks cut off", clicks, "[{\"action\":\"click\"},", noClicks);
}

void PlaybackMouseTrackTest::badFiles()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QStringList, log);
    recording.without("Mouse/" + name);
    if (!content.isNull())
        recording.file("Mouse/" + name, content);
    LogCapture capture;
    KelPlaybackMouseTrack track(dir(), nullptr);
    QCOMPARE(capture.take(), log);
    const bool isUsable = log.isEmpty() || log.last().startsWith("W");
    QCOMPARE(track.errorString(), isUsable ? QString() : QString("Failed to load mouse track JSON data"));
    for (int frame : {0, 3, 2}) {
        track.seekToFrame(frame);
        track.nextKeyFrame();
        paint(track);
    }
}

void PlaybackMouseTrackTest::badCursors()
{
    const QString cursors = recording.filePath("Mouse/cursors/");
    QVERIFY(QFile::copy(cursors + "square.png", recording.filePath("Mouse/outside.png")));
    QVERIFY(QFile::link(recording.filePath("Mouse/outside.png"), cursors + "link.png"));
    QCOMPARE(QProcess::execute("mkfifo", {cursors + "pipe.png"}), 0);
    QVERIFY(QImage(8, 8, QImage::Format_RGB32).save(cursors + "bitmap.bmp"));
    QVERIFY(QImage(2000, 8, QImage::Format_RGB32).save(cursors + "large.png"));
    recording.file("Mouse/cursors/text.png", "text");
    recording.file("Mouse/cursors/huge.png", hugePng());
    for (const QString image : {"missing.png", "", ".", "../outside.png", "link.png", "pipe.png", "bitmap.bmp",
                                "text.png", "huge.png", "large.png"}) {
        recording.cursorList(image);
        LogCapture log;
        KelPlaybackMouseTrack track(dir(), nullptr);
        QCOMPARE(track.errorString(), QString());
        QCOMPARE(log.take(), QStringList("W Failed to load cursor image: \"" + cursors + image + '"'));
        track.seekToFrame(1);
        QCOMPARE(log.take(), QStringList("W Cursor type not found: \"square\""));
        QCOMPARE(partOf(paint(track)), QRect());
    }
}

/// The last record that is not later, and the smallest of all later frames, whatever the order in the file.
void PlaybackMouseTrackTest::findsMoves()
{
    const std::vector<int> frames{3, 5, 5, 9, 4, 4, 12, 1, 8, 30};
    QJsonArray records;
    for (const int frame : frames)
        records.append(mouseMove(frame, records.size(), 0));
    recording.moves(records);
    PointerList list;
    QVERIFY(list.load(recording.filePath("Mouse/mousemoves-0.json")));
    for (int frame = 0; frame < 40; ++frame) {
        int last = -1;
        int next = -1;
        for (int i = 0; i < int(frames.size()); ++i) {
            last = frames[i] <= frame ? i : last;
            next = frames[i] > frame && (next < 0 || frames[i] < next) ? frames[i] : next;
        }
        const PointerList::Sample *sample = list.at(frame);
        QCOMPARE(sample ? sample->position.x() : -1, last);
        QCOMPARE(list.nextFrame(frame), next);
    }
}

void PlaybackMouseTrackTest::worksInRecording()
{
    recording.size(300, 200).without("Mouse");
    KelPlaybackDependencies dependencies;
    dependencies.nowMs = [] { return 0; };
    auto script = std::make_shared<DecoderScript>();
    script->frameSize = QSize(300, 200);
    dependencies.decoders = scriptedDecoders(script);
    KelPlaybackRules rules;
    std::unique_ptr<KelPlaybackTrackManager> manager;
    const auto load = [&] { manager = PlaybackInternals::load(recording.path(), dependencies, rules); };
    LogCapture log;
    load();
    QCOMPARE(manager->trackNames(), {"ScreenTrack"});
    QCOMPARE(log.take(), QStringList("W Mouse track enabled but directory not found: \"" + dir() + '"'));

    recording.cursor().moves("1:100,50").clicks("2 left down, 40 left up");
    gKelMovieConfig.playbackMouseClickEffect = 6; // its effect is the size of the pointer
    load();
    QCOMPARE(manager->trackNames(), QStringList({"ScreenTrack", "MouseTrack"}));
    const auto pointerWidth = [&] {
        QImage image(300, 200, QImage::Format_RGB32);
        QPainter painter(&image);
        manager->paint(&painter);
        return paintedPart(image, frameColor(manager->currentFrame())).width();
    };
    manager->play();
    for (const bool isPlaying : {true, false}) {
        for (int frame = 0; frame <= 10; ++frame)
            manager->seek(frame);
        QVERIFY(pointerWidth() <= 14);
        if (isPlaying)
            manager->pause();
        else
            manager->seek(0);
        QCOMPARE(pointerWidth(), isPlaying ? 16 : 0);
    }

    // With effects in recording time, a frame looks the same however it is reached.
    rules.effectsFollowRecordingTime = true;
    load();
    manager->seek(6);
    const int width = pointerWidth();
    QVERIFY(width < 16);
    manager->seek(90);
    QCOMPARE(pointerWidth(), 16);
    manager->setFrameAsPlayed(6);
    manager->updateSettings();
    QCOMPARE(pointerWidth(), width);

    recording.clicks("2 left down, 2 left up, 60 left down, 60 left up");
    for (const bool pairsNearest : {false, true}) {
        rules.pairsNearestRelease = pairsNearest;
        load();
        manager->seek(6);
        QVERIFY(pointerWidth() < 16);
        manager->seek(40); // until the second release, or long after the first one
        QCOMPARE(pointerWidth() < 16, !pairsNearest);
    }

    recording.file("Mouse/mousemoves-0.json", "[");
    load();
    QCOMPARE(manager->trackNames(), QStringList("ScreenTrack"));
    QCOMPARE(manager->totalFrames(), 100);
}

QTEST_MAIN(PlaybackMouseTrackTest)
#include "tst_playback_mouse_track.moc"
