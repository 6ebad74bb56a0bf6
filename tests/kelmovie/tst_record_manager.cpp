#include "RecordFakes.h"
#include "record/KelRecordScreenTrack.h"
#include "record/KelRecordTrackManager.h"
#include "record/KelRecordingMetadata.h"

#include "support/LogCapture.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <thread>

namespace
{
/// A manager with tracks of the test's, whose clock moves only when told to.
class TestedManager : public KelRecordTrackManager
{
public:
    TestedManager(const QRect &area, const Config &config, qint64 &nowMs)
        : KelRecordTrackManager(
              area, config, [&nowMs] { return nowMs; }, nullptr)
        , m_nowMs(nowMs)
    {
    }
    using KelRecordTrackManager::addTrack;

    /// One expiry of the timer, after `ms`.
    void tick(qint64 ms)
    {
        m_nowMs += ms;
        QVERIFY(QMetaObject::invokeMethod(this, "onFrameTimeout"));
    }

private:
    qint64 &m_nowMs;
};
} // namespace

class TestRecordManager : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void durationExcludesPauses();
    void totalFramesFollowTheDuration_data();
    void totalFramesFollowTheDuration();
    void ticksReachTheTrackOnlyWhileRecording();
    void sidesBecomeEven();
    void metadataIsKeptUpToDate();
    void logsAWholeRecording();
    void stopWithoutStartChangesNothing();
    void unwritableMetadataIsReported();
    void failuresOfTracksAreCollected();
    void stopsTickingAtTheLimit();
    void releaseWaitsForTheQueuedStop();
    void destructionStopsTheRecording();
    void timerTicksTruncatedMilliseconds();

private:
    QStringList takenFailures()
    {
        QStringList texts;
        for (const auto &failure : m_manager->takeFailures())
            texts << failure.text();
        return texts;
    }
    void createManager(const QRect &area = QRect(0, 0, 640, 480), int fps = 25);
    GatedTrack *addTrack();
    KelRecordingMetadata metadata() const;

    std::unique_ptr<QTemporaryDir> m_dir;
    qint64 m_nowMs = 1'000'000;
    std::unique_ptr<TestedManager> m_manager;
};

void TestRecordManager::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

void TestRecordManager::cleanup()
{
    m_manager.reset();
}

void TestRecordManager::createManager(const QRect &area, int fps)
{
    KelRecordTrackManager::Config config;
    config.directory = m_dir->filePath("recording");
    config.fps = fps;
    config.screen = false;
    m_manager = std::make_unique<TestedManager>(area, config, m_nowMs);
}

GatedTrack *TestRecordManager::addTrack()
{
    auto *track = new GatedTrack;
    m_manager->addTrack(track);
    return track;
}

KelRecordingMetadata TestRecordManager::metadata() const
{
    KelRecordingMetadata metadata;
    metadata.durationMs = -1;
    KelRecordingMetadata::load(m_dir->filePath("recording"), &metadata);
    return metadata;
}

void TestRecordManager::durationExcludesPauses()
{
    createManager();
    m_manager->startRecording();
    m_manager->tick(40);
    m_nowMs += 103;
    m_manager->pauseRecording();
    m_nowMs += 5000;
    m_manager->pauseRecording(); // no second pause begins
    m_manager->startRecording();
    m_manager->startRecording(); // nor a second resume
    m_nowMs += 60;
    m_manager->tick(7);
    m_manager->pauseRecording();
    m_nowMs += 77777;
    m_manager->stopRecording();
    QCOMPARE(metadata().durationMs, qint64(40 + 103 + 60 + 7));
    QCOMPARE(metadata().actualRecordedFrames, 2);
}

void TestRecordManager::totalFramesFollowTheDuration_data()
{
    QTest::addColumn<int>("fps");
    QTest::addColumn<qint64>("durationMs");
    QTest::addColumn<qint64>("totalFrames");
    QTest::newRow("whole") << 24 << qint64(10000) << qint64(240);
    QTest::newRow("truncated") << 30 << qint64(999) << qint64(29);
    QTest::newRow("beyond 32 bits") << 60 << qint64(100000000) << qint64(6000000);
    QTest::newRow("nothing recorded") << 25 << qint64(0) << qint64(3); // ticks
}

void TestRecordManager::totalFramesFollowTheDuration()
{
    QFETCH(int, fps);
    QFETCH(qint64, durationMs);
    createManager(QRect(0, 0, 640, 480), fps);
    m_manager->startRecording();
    for (int i = 0; i < 3; ++i)
        m_manager->tick(0);
    m_nowMs += durationMs;
    m_manager->stopRecording();
    QCOMPARE(metadata().fps, fps);
    QCOMPARE(metadata().durationMs, durationMs);
    QTEST(metadata().totalFrames, "totalFrames");
    QCOMPARE(metadata().actualRecordedFrames, 3);
}

void TestRecordManager::ticksReachTheTrackOnlyWhileRecording()
{
    createManager();
    GatedTrack *track = addTrack();
    m_manager->tick(40);
    m_manager->startRecording();
    m_manager->tick(40);
    m_manager->pauseRecording();
    m_manager->tick(40);
    m_manager->startRecording();
    m_manager->pauseRecording();
    m_manager->stopRecording();
    m_manager->tick(40);
    QTRY_VERIFY(track->calls(0).contains("stop 1 40"));
    // A worker that is behind gets no frame and no checkpoint, but all of these.
    const QStringList calls = track->calls(0).filter(QRegularExpression("^(start|pause|stop)"));
    QCOMPARE(calls, (QStringList{"start", "pause", "start", "pause", "stop 1 40"}));
    QVERIFY(!track->calls(0).contains("frame 1"));
}

void TestRecordManager::sidesBecomeEven()
{
    createManager(QRect(-3, 7, 1001, 601));
    m_manager->startRecording();
    m_manager->stopRecording();
    QCOMPARE(metadata().recordArea, QRect(-3, 7, 1002, 602));
    QVERIFY(!metadata().screenTrack);
}

void TestRecordManager::metadataIsKeptUpToDate()
{
    createManager();
    m_manager->startRecording();
    QVERIFY(!metadata().complete);
    QCOMPARE(metadata().durationMs, qint64(0));
    for (int i = 0; i < 26; ++i)
        m_manager->tick(40);
    QCOMPARE(metadata().actualRecordedFrames, 25);
    QCOMPARE(metadata().durationMs, qint64(1000));
    QVERIFY(!metadata().complete);
    m_nowMs += 5;
    m_manager->pauseRecording();
    QCOMPARE(metadata().actualRecordedFrames, 26);
    QCOMPARE(metadata().durationMs, qint64(1045));
    m_nowMs += 500;
    m_manager->stopRecording();
    QVERIFY(metadata().complete);
    QCOMPARE(metadata().durationMs, qint64(1045));
    QCOMPARE(QDir(m_dir->filePath("recording")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{"TrackManager.meta"});
}

void TestRecordManager::logsAWholeRecording()
{
    createManager();
    addTrack();
    LogCapture log;
    m_manager->startRecording();
    m_manager->tick(40);
    m_manager->pauseRecording();
    m_nowMs += 1000;
    m_manager->startRecording();
    m_nowMs += 1960;
    m_manager->pauseRecording();
    m_manager->stopRecording();
    m_manager->releaseResources();
    QStringList lines = log.take();
    lines.replaceInStrings(QRegularExpression("0x[0-9a-f]+"), "ADDRESS");
    // Whether there was anything to wait for depends on the worker's speed.
    lines.removeAll("W [KelRecordTrackThreadWrap] 线程已空闲");
    QCOMPARE(lines, (QStringList{
                        "W [KelRecordTrackManager::stopRecording]",
                        "W [KelRecordTrackManager]",
                        "W [KelRecordTrackManager]",
                        "W [KelRecordTrackManager] 开始停止所有轨道 (共 1 个)",
                        "W [KelRecordTrackManager] 停止轨道 0 ，指针: ADDRESS",
                        "W [KelRecordTrackThreadWrap::stopRecording] ========== 开始 ==========",
                        "W [KelRecordTrackThreadWrap] 等待线程空闲 (超时 1000 ms)",
                        "W [KelRecordTrackThreadWrap] 发送 doStopRecording 信号",
                        "W [KelRecordTrackThreadWrap::stopRecording] ========== 完成 (异步) ==========",
                        "W [KelRecordTrackManager] 轨道 0 停止完成",
                        "W [KelRecordTrackManager] 所有轨道停止完成",
                        "W [KelRecordTrackManager] 没有音频轨道",
                        "W [KelRecordTrackManager] ========== 录制完成统计 ==========",
                        "W [KelRecordTrackManager] 逻辑帧数: 1 帧",
                        "W [KelRecordTrackManager] 设定FPS: 25",
                        "W [KelRecordTrackManager] 实际录制时长: 2000 ms (2.00 秒)",
                    }));
}

void TestRecordManager::stopWithoutStartChangesNothing()
{
    createManager();
    LogCapture log;
    m_manager->stopRecording();
    QCOMPARE(log.take(), (QStringList{"W [KelRecordTrackManager::stopRecording]", "W [KelRecordTrackManager]"}));
    QVERIFY(!QFileInfo::exists(m_dir->filePath("recording/TrackManager.meta")));
}

void TestRecordManager::unwritableMetadataIsReported()
{
    createManager();
    QVERIFY(QDir(m_dir->path()).mkpath("recording/TrackManager.meta.tmp/occupied"));
    LogCapture log;
    m_manager->startRecording();
    const QStringList atStart = log.take();
    QCOMPARE(atStart.size(), 1);
    QVERIFY2(atStart[0].startsWith("D "), qPrintable(atStart[0]));
    m_manager->stopRecording();
    QCOMPARE(log.take().filter(QRegularExpression("^C Failed to save manager metadata: \".+\"$")).size(), 1);
    QCOMPARE(takenFailures().size(), 1);
}

void TestRecordManager::failuresOfTracksAreCollected()
{
    createManager();
    auto *early = new GatedTrack;
    early->reportFailure("Early track", "before anybody listened");
    m_manager->addTrack(early);
    QCOMPARE(takenFailures(), QStringList{"Early track: before anybody listened"});

    GatedTrack *track = addTrack();
    QSignalSpy signalled(m_manager.get(), &KelRecordTrackManager::trackFailed);
    track->reportFailure("Left ear", "first");
    track->reportFailure("Left ear", "second");
    track->reportFailure("Right ear", "first");
    QCOMPARE(signalled.count(), 2);
    QCOMPARE(takenFailures(), (QStringList{"Left ear: first", "Right ear: first"}));
    QCOMPARE(takenFailures(), QStringList());
}

void TestRecordManager::stopsTickingAtTheLimit()
{
    createManager();
    QSignalSpy reached(m_manager.get(), &KelRecordTrackManager::frameLimitReached);
    m_manager->startRecording();
    for (int i = 0; i < KelRecordTrackManager::MaxFrames + 3; ++i)
        m_manager->tick(0);
    QCOMPARE(reached.count(), 1);
    QVERIFY(m_manager->isAtFrameLimit());
    m_manager->stopRecording();
    QCOMPARE(metadata().actualRecordedFrames, KelRecordTrackManager::MaxFrames);
}

void TestRecordManager::releaseWaitsForTheQueuedStop()
{
    createManager();
    std::mutex mutex;
    std::condition_variable changed;
    bool frameEntered = false;
    bool frameMayEnd = false;
    bool streamerGone = false;
    ScreenScript script;
    script.atQuestion = [&] {
        std::unique_lock lock(mutex);
        frameEntered = true;
        changed.notify_all();
        changed.wait(lock, [&] { return frameMayEnd; });
    };
    script.atStreamerEnd = [&] {
        std::lock_guard lock(mutex);
        streamerGone = true;
        changed.notify_all();
    };
    QDir().mkpath(m_dir->filePath("recording/Screen"));
    m_manager->addTrack(new KelRecordScreenTrack(QRect(0, 0, 10, 10), m_dir->filePath("recording/Screen"),
                                                 std::make_unique<ScriptedStreamer>(script),
                                                 std::make_unique<ScriptedEncoder>(script)));
    m_manager->startRecording();
    QTRY_VERIFY((m_manager->tick(40), std::lock_guard(mutex), frameEntered));
    m_manager->stopRecording(); // gives up waiting for the frame and queues the stop behind it

    bool overtaken = false;
    std::thread opener([&] {
        std::unique_lock lock(mutex);
        overtaken = changed.wait_for(lock, std::chrono::milliseconds(100), [&] { return streamerGone; });
        frameMayEnd = true;
        changed.notify_all();
    });
    m_manager->releaseResources();
    opener.join();
    QVERIFY(!overtaken);
    QVERIFY(streamerGone);
    QCOMPARE(script.added, QVector<int>{0});
    QVERIFY(QFileInfo(m_dir->filePath("recording/Screen/frame_indexes.dat")).size() > 8);
}

void TestRecordManager::destructionStopsTheRecording()
{
    createManager();
    GatedTrack *track = addTrack();
    QStringList calls;
    track->atEnd = [&](const QStringList &all) { calls = all; };
    m_manager->startRecording();
    m_nowMs += 80;
    m_manager.reset();
    QCOMPARE(calls.last(), QString("stop 0 80"));
    QCOMPARE(metadata().durationMs, qint64(80));
}

void TestRecordManager::timerTicksTruncatedMilliseconds()
{
    const QMap<int, int> intervals{{1, 1000}, {24, 41}, {25, 40}, {30, 33}, {60, 16}, {1000, 1}};
    for (auto it = intervals.begin(); it != intervals.end(); ++it) {
        createManager(QRect(0, 0, 10, 10), it.key());
        m_manager->startRecording();
        QCOMPARE(m_manager->findChild<QTimer *>()->interval(), it.value());
        QCOMPARE(m_manager->findChild<QTimer *>()->timerType(), Qt::PreciseTimer);
    }
}

QTEST_MAIN(TestRecordManager)
#include "tst_record_manager.moc"
