#include "kelmovie/support/RecordingOnDisk.h"
#include "kelmovie/support/SavingConfigIO.h"
#include "kelmovie/support/ScriptedDecoder.h"

#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QBitmap>
#include <QPainter>
#include <QTimer>
#include <QTimerEvent>
#include <QtTest>

#include <limits>

using namespace kel;

using Damage = std::function<void(RecordingOnDisk &)>;
Q_DECLARE_METATYPE(Damage)

class PlaybackManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        script = std::make_shared<DecoderScript>();
        recording = RecordingOnDisk();
        signalLog.clear();
        nowMs = 1'700'000'000'000;
    }

    void loads_data();
    void loads();
    void seeks();
    void seekWhilePlayingRestartsClock();
    void tick_data();
    void tick();
    void decodesEveryNthChange();
    void endOfPlay();
    void followsFrameTimes();
    void playPauseStop();
    void speedIsClamped();
    void paintsFromBottomToTop();

private:
    std::unique_ptr<KelPlaybackTrackManager> load()
    {
        KelPlaybackDependencies dependencies;
        dependencies.nowMs = [this] { return nowMs; };
        dependencies.decoders = scriptedDecoders(script);
        auto manager = PlaybackInternals::load(recording.path(), dependencies);
        const auto *m = manager.get();
        connect(m, &KelPlaybackTrackManager::sigFrameChanged, this,
                [this](int frame) { signalLog.append(QString::number(frame)); });
        connect(m, &KelPlaybackTrackManager::sigPlaybackStarted, this, [this] { signalLog.append("started"); });
        connect(m, &KelPlaybackTrackManager::sigPlaybackPaused, this, [this] { signalLog.append("paused"); });
        connect(m, &KelPlaybackTrackManager::sigPlaybackStopped, this,
                [this, m] { signalLog.append(QString("stopped at %1").arg(m->currentFrame())); });
        connect(m, &KelPlaybackTrackManager::sigPlaybackSpeedChanged, this,
                [this](double speed) { signalLog.append(QString("speed %1").arg(speed)); });
        return manager;
    }

    /// Advances the clock by `afterMs` and lets the timer of the manager expire, without waiting.
    void tickAfter(KelPlaybackTrackManager &manager, qint64 afterMs)
    {
        nowMs += afterMs;
        auto *timer = manager.findChild<QTimer *>();
        QVERIFY(timer);
        if (!timer->isActive())
            return;
        QTimerEvent expired(timer->timerId());
        QCoreApplication::sendEvent(timer, &expired);
    }

    static int shownFrame(KelPlaybackTrackManager &manager)
    {
        QImage image(64, 48, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        manager.paint(&painter);
        return frameOfColor(image.pixel(63, 47));
    }

    std::shared_ptr<DecoderScript> script;
    RecordingOnDisk recording;
    QStringList signalLog;
    qint64 nowMs = 0;
};

void PlaybackManagerTest::loads_data()
{
    // log: how its lines begin.
    const TestTable<Damage, QStringList, int, QString> row("damage", "log", "totalFrames", "error");
    const QString noMetadata = "W Cannot open manager metadata: \"";
    const QString noDirectory = "W Screen track enabled but directory not found: \"";
    const QString noMouse = "W Mouse track enabled but directory not found: \"";
    const QString noScreen = "C No screen track found in tracks list";
    const QString noDecoder = "Failed to create H264 decoder or decoder is invalid";
    using R = RecordingOnDisk;
    row(
        "complete", [](R &) {}, {}, 100, "");
    const Damage kill = [](R &r) { // the video is ahead of its index
        r.frames(90, 25, [](int i) { return i + 3; })
            .set(&KelRecordingMetadata::durationMs, qint64(4'000))
            .set(&KelRecordingMetadata::complete, false);
    };
    row("killed", kill, {}, 97, "");
    row(
        "no metadata", [](R &r) { r.without("TrackManager.meta"); }, {noMetadata, noMouse}, 100, "");
    row(
        "metadata is no object", [](R &r) { r.file("TrackManager.meta", "[1, 2]"); },
        {"W Invalid manager metadata format", noMouse}, 100, "");
    row(
        "no duration", [](R &r) { r.file("TrackManager.meta", R"({"tracks": {"mouseTrack": false}})"); },
        {"W No recording duration found in metadata"}, 100, "");
    row(
        "no directory", [](R &r) { r.without(""); }, {noMetadata, noDirectory, noScreen, noMouse}, 1,
        "Recording directory not found: ");
    row(
        "no screen directory", [](R &r) { r.without("Screen"); }, {noDirectory, noScreen}, 1,
        "Screen directory not found: ");
    row(
        "no screen track", [](R &r) { r.set(&KelRecordingMetadata::screenTrack, false); },
        {"W Screen track disabled, cannot determine frame count"}, 1, "The recording has no screen track");
    row(
        "no keys", [](R &r) { r.set(&KelRecordingMetadata::keyboardTrack, true); },
        {"C KelPlaybackKeyboardTrack open meta file failed: ", "C Keyboard track creation failed: "}, 100, "");
    row(
        "broken video", [this](R &) { script->validity = {false}; },
        {"C " + noDecoder, "C Screen track creation failed: \"" + noDecoder, noScreen}, 1, noDecoder);
}

void PlaybackManagerTest::loads()
{
    QFETCH(Damage, damage);
    QFETCH(QStringList, log);
    QFETCH(int, totalFrames);
    QFETCH(QString, error);

    damage(recording);
    LogCapture capture;
    auto manager = load();
    const QStringList lines = capture.take();
    QVERIFY2(std::equal(lines.begin(), lines.end(), log.begin(), log.end(),
                        [](const QString &line, const QString &begin) { return line.startsWith(begin); }),
             qPrintable(lines.join('\n')));
    QCOMPARE(manager->totalFrames(), totalFrames);
    QCOMPARE(manager->fps(), 25);
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Stopped);
    QCOMPARE(manager->isValidRecording(), error.isEmpty());
    QVERIFY(error.isEmpty() ? manager->errorString().isEmpty() : manager->errorString().startsWith(error));
    QCOMPARE(manager->trackNames(), error.isEmpty() ? QStringList{"ScreenTrack"} : QStringList{});
    QVERIFY(!PlaybackInternals::engine(*manager).tracks().keyboard()); // would paint nothing
    if (error.isEmpty())
        QCOMPARE(manager->frameSize(), QSize(64, 48)); // from the video where the metadata has none

    signalLog.clear();
    manager->seek(totalFrames);
    manager->seek(-1);
    QVERIFY(signalLog.isEmpty());
    manager->seek(totalFrames - 1);
    QCOMPARE(signalLog, QStringList{QString::number(totalFrames - 1)});
    manager->play();
    manager.reset();
    QCOMPARE(script->alive, 0);
    QCOMPARE(script->deletedUnclosed, 0);
}

void PlaybackManagerTest::seeks()
{
    const auto manager = load();
    manager->seek(40);
    QCOMPARE(manager->currentFrame(), 40);
    QCOMPARE(shownFrame(*manager), 40);
    manager->seek(40, true);
    QCOMPARE(signalLog, (QStringList{"40", "40"}));
    QCOMPARE(script->decoded, QVector<int>{40});
    manager->paint(nullptr);
    signalLog.clear();
    for (const int frame : {7, 100, -1})
        PlaybackInternals::engine(*manager).setFrameSilently(frame);
    QCOMPARE(manager->currentFrame(), 7);
    QCOMPARE(shownFrame(*manager), 7);
    QVERIFY(signalLog.isEmpty());
}

void PlaybackManagerTest::seekWhilePlayingRestartsClock()
{
    struct Case {
        int frame;
        bool force;
        int frameAfter100Ms; // at 25 fps, 2.5 frames later
    };
    for (const Case &c :
         {Case{11, false, 12}, {12, false, 12}, {8, false, 12}, {13, false, 15}, {7, false, 9}, {11, true, 13}}) {
        const auto manager = load();
        manager->seek(10);
        manager->play();
        manager->seek(c.frame, c.force);
        tickAfter(*manager, 100);
        QCOMPARE(manager->currentFrame(), c.frameAfter100Ms);
    }
}

void PlaybackManagerTest::tick_data()
{
    const TestTable<double, int, QStringList, int> row("speed", "afterMs", "log", "shown");

    row("too early", 1.0, 39, {}, 0);
    row("one frame", 1.0, 40, {"1", "1"}, 1);
    row("late by seconds", 1.0, 2039, {"50", "50"}, 50);
    row("half speed", 0.5, 160, {"2", "2"}, 2);
    row("one and a half", 1.5, 80, {"3", "3"}, 3);
    row("last frame, not over", 1.0, 3999, {"99", "99"}, 99);
    row("clock set back", 1.0, -5000, {}, 0);
}

void PlaybackManagerTest::tick()
{
    QFETCH(double, speed);
    QFETCH(int, afterMs);
    QFETCH(QStringList, log);
    QFETCH(int, shown);

    const auto manager = load();
    manager->setSpeed(speed);
    manager->play();
    signalLog.clear();
    tickAfter(*manager, afterMs);
    QCOMPARE(signalLog, log);
    QCOMPARE(shownFrame(*manager), shown);
}

void PlaybackManagerTest::decodesEveryNthChange()
{
    for (const auto &[speed, step] : {std::pair(1.5, 1), {1.6, 1}, {2.0, 2}, {3.9, 3}}) {
        const auto manager = load();
        manager->setSpeed(speed);
        manager->play();
        signalLog.clear();
        script->decoded.clear();
        const int changes = 12; // a multiple of every step: the counter may start anywhere
        for (int i = 0; i < changes; ++i)
            tickAfter(*manager, 60);
        QCOMPARE(script->decoded.size(), changes / step);
        QCOMPARE(signalLog.size(), changes + changes / step); // once per change, and again per move
    }
}

void PlaybackManagerTest::endOfPlay()
{
    const auto manager = load();
    manager->seek(98);
    manager->play();
    tickAfter(*manager, 40);
    tickAfter(*manager, 39);
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Playing);
    signalLog.clear();
    tickAfter(*manager, 1);
    QCOMPARE(signalLog, (QStringList{"0", "stopped at 0"}));
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Stopped);
    QCOMPARE(manager->lastPlayDurationMs(), qint64(4000));
    QVERIFY(!manager->findChild<QTimer *>()->isActive());

    manager->play(); // from the beginning, showing the first frame at once
    QCOMPARE(shownFrame(*manager), 0);
    tickAfter(*manager, 40);
    QCOMPARE(manager->currentFrame(), 1);
}

/// At nominally 25 frames a second, of which the clock lost every second one for a while.
void PlaybackManagerTest::followsFrameTimes()
{
    std::vector<qint32> times;
    for (int i = 0; i < 100; ++i)
        times.push_back(40 * (i + 1) + 40 * qBound(0, i - 20, 50));
    recording.frameTimes(times);
    const auto manager = load();
    QCOMPARE(manager->lengthMs(), qint64(6'000));
    manager->setSpeed(2.0);
    manager->play();
    for (const auto &[elapsedMs, frame] : {std::pair(300, 14), {799, 29}, {800, 30}, {2'900, 94}}) {
        tickAfter(*manager, 1'700'000'000'000 + elapsedMs - nowMs);
        QCOMPARE(manager->currentFrame(), frame);
        QCOMPARE(manager->frameAtMs(2 * elapsedMs), frame);
    }
    manager->seek(44, true);
    tickAfter(*manager, 0);
    QCOMPARE(manager->currentFrame(), 44);
    tickAfter(*manager, 1'639); // frame 44 appears at 2720 ms
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Playing);
    tickAfter(*manager, 1);
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Stopped);
}

void PlaybackManagerTest::playPauseStop()
{
    const auto manager = load();
    manager->pause();
    manager->stop();
    QVERIFY(signalLog.isEmpty());

    manager->play();
    manager->play();
    const auto *timer = manager->findChild<QTimer *>();
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 20); // a frame is at most half a frame late
    tickAfter(*manager, 410);
    manager->pause();
    manager->pause();
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Paused);
    QVERIFY(!timer->isActive());
    nowMs += 100'000;
    manager->play(); // continues where it was
    tickAfter(*manager, 40);
    QCOMPARE(manager->currentFrame(), 11);
    manager->pause();
    manager->stop();
    manager->stop();
    QCOMPARE(signalLog,
             (QStringList{"started", "10", "10", "paused", "started", "11", "11", "paused", "0", "stopped at 0"}));
}

void PlaybackManagerTest::speedIsClamped()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const auto &[asked, speed] :
         {std::pair(2.0, 2.0), {0.0, 0.1}, {-3.0, 0.1}, {1e300, 16.0}, {nan, 1.0}, {infinity, 1.0}}) {
        const auto manager = load();
        manager->play();
        tickAfter(*manager, 400);
        signalLog.clear();
        manager->setSpeed(asked);
        QCOMPARE(manager->speed(), speed);
        QCOMPARE(signalLog, qIsFinite(asked) ? QStringList{QString("speed %1").arg(speed)} : QStringList{});
        tickAfter(*manager, 120); // from frame 10 on, no jump
        QCOMPARE(manager->currentFrame(), 10 + int(3 * speed));
    }
}

/// The screen, the pointer, the time, the keys.
void PlaybackManagerTest::paintsFromBottomToTop()
{
    const SavingConfigIO settings;
    KelMovieConfig &config = gKelMovieConfig;
    config.playbackKeyboardBgColor = Qt::yellow;
    config.playbackProgressFgColor = Qt::white;
    config.playbackProgressSize = 100; // down to the keys
    recording.size(300, 200).frames(50).cursor(300).moves("0:1,1").keys("0:+Control 1:+C");
    const auto manager = load();
    const auto paint = [&](bool withPointer, bool withTime, bool withKeys) {
        config.playbackMouseEnable = withPointer;
        config.playbackProgressEnable = withTime;
        config.playbackKeyboardShowKeyType = withKeys ? 15 : 0;
        manager->updateSettings();
        manager->seek(10);
        QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::magenta);
        QPainter painter(&image);
        manager->paint(&painter);
        return image;
    };
    const auto area = [](const QImage &image, const QColor &color) {
        return QRegion(QBitmap::fromImage(image.createMaskFromColor(color.rgb(), Qt::MaskOutColor)));
    };
    const QImage pointer = paint(true, false, false), time = paint(false, true, false), all = paint(true, true, true);
    QCOMPARE(pointer.pixelColor(20, 20), QColor(Qt::green));
    const QRegion keys = area(paint(false, false, true), Qt::yellow), digits = area(time, Qt::white);
    QVERIFY(!digits.isEmpty() && time.pixelColor(keys.boundingRect().center()) != QColor(Qt::magenta));
    QCOMPARE(area(all, Qt::yellow), keys);
    QVERIFY((digits - area(all, Qt::white) - keys.boundingRect()).isEmpty());
}

QTEST_MAIN(PlaybackManagerTest)
#include "tst_playback_manager.moc"
