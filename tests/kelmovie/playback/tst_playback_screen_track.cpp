#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/ScriptedDecoder.h"

#include "playback/tracks/KelPlaybackScreenTrack.h"
#include "recording/FrameIndexReader.h"
#include "support/TestTable.h"

#include <QPainter>
#include <QRegularExpression>
#include <QtTest>

using namespace kel;

Q_DECLARE_METATYPE(std::vector<int>)

class PlaybackScreenTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        script = std::make_shared<DecoderScript>();
        recording = RecordingOnDisk();
        recording.frames(10);
    }

    void readsIndexTable_data();
    void readsIndexTable();
    void construction_data();
    void construction();
    void mapsLogicFrames();
    void decodesVideoFrameOnce();
    void recoversFromFailingFrame_data();
    void recoversFromFailingFrame();
    void continuesAfterFailure();
    void paintsInLogicalPixels();
    void releasesVideo();

private:
    std::unique_ptr<KelPlaybackScreenTrack> makeTrack(double ratio = 1.0, bool preferHardware = false)
    {
        return std::make_unique<KelPlaybackScreenTrack>(ratio, recording.filePath("Screen"), preferHardware,
                                                        scriptedDecoders(script), nullptr);
    }

    static QImage painted(KelPlaybackScreenTrack &track, const QSize &size = QSize(64, 48))
    {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        track.paint(&painter);
        return image;
    }

    static int shownFrame(KelPlaybackScreenTrack &track) { return frameOfColor(painted(track).pixel(0, 0)); }

    static void expectLog(QtMsgType type, const QString &start)
    {
        QTest::ignoreMessage(type, QRegularExpression("^" + QRegularExpression::escape(start)));
    }

    std::shared_ptr<DecoderScript> script;
    RecordingOnDisk recording;
};

void PlaybackScreenTrackTest::readsIndexTable_data()
{
    const TestTable<QByteArray, std::vector<int>, QString> row("file", "entries", "log");

    const auto table = [](std::initializer_list<qint32> values) { return RecordingOnDisk::bigEndian(values); };
    row("plain", table({1, 3, -1, 0, 7}), {-1, 0, 7}, "");
    row("bytes after the last entry", table({1, 1, 4, 5}), {4}, "");
    row("short by one and a half", table({1, 4, 1, 2, 3}).chopped(2), {1, 2, 0, 0}, "");
    row("largest count, no entries", table({1, 1000000}), std::vector<int>(1000000, 0), "");
    row("empty", "", {}, "Unsupported frame index file version: 0");
    row("version 2", table({2, 1, 0}), {}, "Unsupported frame index file version: 2");
    row("no count", table({1}), {}, "Invalid frame count in file: 0");
    row("negative count", table({1, -5}), {}, "Invalid frame count in file: -5");
    row("count too large", table({1, 1000001, 3}), {}, "Invalid frame count in file: 1000001");
}

void PlaybackScreenTrackTest::readsIndexTable()
{
    QFETCH(QByteArray, file);
    QFETCH(std::vector<int>, entries);
    QFETCH(QString, log);

    recording.file("Screen/frame_indexes.dat", file);
    if (!log.isEmpty())
        expectLog(QtCriticalMsg, log);
    std::vector<int> read{99};
    QCOMPARE(readFrameIndex(recording.filePath("Screen"), read), log.isEmpty());
    QCOMPARE(read, entries);
}

void PlaybackScreenTrackTest::construction_data()
{
    const TestTable<QString, QStringList, QStringList, QString, int> row("setup", "opened", "warnings", "error",
                                                                         "logicFrames");
    const QString h264 = h264Kind(h264Decoder::PreferH264DecodeParams(false));
    const QString fallback = "FFV1 decoder failed, falling back to H264";
    row("mp4", "", {h264}, {}, "", 10);
    row("mkv is preferred to mp4", "mkv ffv1", {"ffv1"}, {}, "", 10);
    row("FFV1 cannot open it", "mkv ffv1 invalid", {"ffv1", h264}, {fallback}, "", 10);
    row("FFV1 is not supported", "mkv", {h264}, {fallback}, "", 10);
    row("no index table", "noindex", {h264},
        {"Frame indexes file not found:", "Failed to load frame indexes, will try to create default mapping",
         "Creating default 1:1 frame mapping for 100 frames"},
        "", 100);
    row("no video", "novideo", {}, {}, "Video file not found. Searched for: ", 10);
    row("H.264 is not supported", "noh264", {}, {}, "H264 decoder not supported on this system", 10);
    row("H.264 cannot open it", "invalid", {h264}, {}, "Failed to create H264 decoder or decoder is invalid", 10);
    row("no frames", "noframes", {h264}, {}, "Invalid frame count from decoder: 0", 10);
}

void PlaybackScreenTrackTest::construction()
{
    QFETCH(QString, setup);
    QFETCH(QStringList, opened);
    QFETCH(QStringList, warnings);
    QFETCH(QString, error);
    QFETCH(int, logicFrames);

    const QStringList words = setup.split(' ');
    if (words.contains("mkv"))
        recording.file("Screen/screen_record.mkv", "video");
    if (words.contains("noindex"))
        recording.without("Screen/frame_indexes.dat");
    if (words.contains("novideo"))
        recording.without("Screen/screen_record.mp4");
    script->ffv1Supported = words.contains("ffv1");
    script->h264Supported = !words.contains("noh264");
    if (words.contains("invalid"))
        script->validity = {false};
    if (words.contains("noframes"))
        script->frameCount = 0;
    for (const QString &warning : warnings)
        expectLog(QtWarningMsg, warning);
    if (!error.isEmpty())
        expectLog(QtCriticalMsg, error);

    auto track = makeTrack();
    QVERIFY(error.isEmpty() ? track->errorString().isEmpty() : track->errorString().startsWith(error));
    QCOMPARE(track->name(), QString("ScreenTrack"));
    QCOMPARE(script->opened, opened);
    QCOMPARE(track->logicFrameCount(), logicFrames);
    track->seekToFrame(0); // harmless on an unusable track
    QCOMPARE(shownFrame(*track), error.isEmpty() ? 0 : -1);
    track.reset();
    QCOMPARE(script->alive, 0);
}

void PlaybackScreenTrackTest::mapsLogicFrames()
{
    const std::vector<int> table{-1, 0, 7, 8, 5000, 3, 9, 10, 11, 42};
    recording.frames(10, 25, [&](int i) { return table[i]; });
    struct Case {
        int frame;
        int shown;
        int next;
    };
    // A plain entry, before the first, a negative entry, one beyond the video, one that goes back, past the last.
    for (const Case &c : {Case{2, 7, 3}, {-5, 0, 1}, {0, 0, 1}, {4, 99, 5}, {5, 3, 6}, {25, 42, 10}}) {
        const auto track = makeTrack();
        QCOMPARE(track->nextKeyFrame(), 0);
        track->seekToFrame(c.frame);
        QCOMPARE(shownFrame(*track), c.shown);
        QCOMPARE(track->nextKeyFrame(), c.next);
    }
}

void PlaybackScreenTrackTest::decodesVideoFrameOnce()
{
    recording.frames(10, 25, [](int i) { return i / 4; });
    const auto track = makeTrack();
    QCOMPARE(shownFrame(*track), -1);
    QCOMPARE(painted(*track).pixel(63, 47), QColor(Qt::black).rgb());
    for (int frame = 0; frame < 10; ++frame)
        track->seekToFrame(frame);
    QCOMPARE(script->decoded, (QVector<int>{0, 1, 2}));
}

void PlaybackScreenTrackTest::recoversFromFailingFrame_data()
{
    const TestTable<QString, QVector<bool>, int, QStringList, QStringList, int> row("setup", "validity", "failures",
                                                                                    "opened", "criticals", "shown");

    const QString h264 = h264Kind(h264Decoder::PreferH264DecodeParams(true));
    const QString software = "h264 h264";
    const QString failed = "Complete failure to decode frame 5 - decoder status: %1 - keeping previous frame";
    const QString noDecoder = "Failed to reinitialize H264 decoder with both hardware and software options";
    row("a new decoder helps", "", {}, 1, {h264, h264}, {}, 5);
    row("the software decoder helps", "", {true, false}, 1, {h264, h264, software}, {}, 5);
    row("the frame remains broken", "", {}, 2, {h264, h264}, {failed.arg("valid")}, 2);
    row("no decoder can be opened", "", {true, false, false}, 1, {h264, h264, software},
        {noDecoder, failed.arg("invalid")}, 2);
    row("H.264 is no longer supported", "noh264", {}, 1, {h264},
        {"H264 decoder not supported on this system", failed.arg("invalid")}, 2);
    row("a new FFV1 decoder helps", "ffv1", {}, 1, {"ffv1", "ffv1"}, {}, 5);
    row("FFV1 falls back", "ffv1", {true, false}, 1, {"ffv1", "ffv1", h264}, {}, 5);
    row("FFV1 is no longer supported", "ffv1 noffv1", {}, 1, {"ffv1", h264}, {}, 5);
}

void PlaybackScreenTrackTest::recoversFromFailingFrame()
{
    QFETCH(QString, setup);
    QFETCH(QVector<bool>, validity);
    QFETCH(int, failures);
    QFETCH(QStringList, opened);
    QFETCH(QStringList, criticals);
    QFETCH(int, shown);

    if (setup.startsWith("ffv1")) {
        recording.file("Screen/screen_record.mkv", "video");
        script->ffv1Supported = true;
    }
    script->validity = validity;
    const auto track = makeTrack(1.0, true);
    track->seekToFrame(2);
    if (setup.endsWith("noh264"))
        script->h264Supported = false;
    if (setup.endsWith("noffv1"))
        script->ffv1Supported = false;
    script->failures[5] = failures;
    expectLog(QtWarningMsg, "Failed to decode frame 5 for logic frame 5 , attempting decoder reinit");
    if (opened.first() == "ffv1" && opened.last() != "ffv1")
        expectLog(QtWarningMsg, "FFV1 decoder reinitialization failed, falling back to H264");
    for (const QString &critical : criticals)
        expectLog(QtCriticalMsg, critical);
    track->seekToFrame(5);
    QCOMPARE(script->opened, opened);
    QCOMPARE(shownFrame(*track), shown);
    QVERIFY(script->alive <= 1);
    QCOMPARE(script->deletedUnclosed, 0);
}

void PlaybackScreenTrackTest::continuesAfterFailure()
{
    const auto track = makeTrack();
    track->seekToFrame(2);
    script->failures[5] = 3;
    for (int attempt = 0; attempt < 2; ++attempt) {
        expectLog(QtWarningMsg, "Failed to decode frame 5");
        if (attempt == 0)
            expectLog(QtCriticalMsg, "Complete failure to decode frame 5");
        track->seekToFrame(5);
        QCOMPARE(shownFrame(*track), attempt == 0 ? 2 : 5);
    }
    track->seekToFrame(6);
    QCOMPARE(shownFrame(*track), 6);
    QCOMPARE(track->nextKeyFrame(), 7);
}

void PlaybackScreenTrackTest::paintsInLogicalPixels()
{
    script->frameSize = QSize(96, 72);
    const auto track = makeTrack(1.5);
    QCOMPARE(track->videoSize(), QSize(64, 48));
    track->seekToFrame(3);
    const QImage image = painted(*track, QSize(66, 48));
    QCOMPARE(frameOfColor(image.pixel(63, 47)), 3);
    QCOMPARE(QColor(image.pixel(65, 47)), QColor(Qt::magenta));
    track->paint(nullptr);
}

void PlaybackScreenTrackTest::releasesVideo()
{
    const auto track = makeTrack();
    track->seekToFrame(3);
    track->releaseDecoder();
    QCOMPARE(script->alive, 0);
    QCOMPARE(script->deletedUnclosed, 0);
    QCOMPARE(track->logicFrameCount(), 0);
    track->seekToFrame(4);
    QCOMPARE(painted(*track).pixel(0, 0), QColor(Qt::black).rgb());
}

QTEST_MAIN(PlaybackScreenTrackTest)
#include "tst_playback_screen_track.moc"
