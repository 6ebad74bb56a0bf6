#include "kelmovie/support/InputFakes.h"
#include "kelmovie/support/RecordFakes.h"
#include "record/KelRecordScreenTrack.h"
#include "record/KelRecordTrackManager.h"
#include "record/KelRecordTrackThreadWrap.h"
#include "recording/FrameTimesReader.h"
#include "recording/KelRecordingMetadata.h"

#include "support/EnvironmentChange.h"
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
/// A manager with tracks and a clock that the test controls.
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

    /// One timeout of the frame timer, after `ms`.
    void tick(qint64 ms)
    {
        m_nowMs += ms;
        QVERIFY(QMetaObject::invokeMethod(this, "onFrameTimeout"));
    }

private:
    qint64 &m_nowMs;
};
} // namespace

class RecordManagerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        m_dir = std::make_unique<QTemporaryDir>();
        m_config = noTracks();
    }

    void cleanup() { m_manager.reset(); }

    void timesExcludePauses()
    {
        m_config.screen = true;
        createManager();
        m_manager->stopRecording(); // nothing is recorded yet
        QVERIFY(!QFileInfo::exists(m_dir->filePath("recording/TrackManager.meta")));
        m_manager->startRecording();
        m_manager->tick(40);
        m_nowMs += 103;
        m_manager->pauseRecording();
        m_nowMs += 5000;
        m_manager->pauseRecording(); // already paused
        m_manager->startRecording();
        m_manager->startRecording();                                                              // already resumed
        QCOMPARE(kel::readFrameTimes(m_dir->filePath("recording/Screen")), std::vector<int>{40}); // survives a crash
        m_nowMs += 60;
        m_manager->tick(7);
        m_manager->pauseRecording();
        m_nowMs += 77777;
        LogCapture log;
        m_manager->stopRecording();
        QVERIFY(log.take().contains("W [KelRecordTrackManager] 实际录制时长: 210 ms (0.21 秒)"));
        QCOMPARE(metadata().durationMs, qint64(40 + 103 + 60 + 7));
        QCOMPARE(kel::readFrameTimes(m_dir->filePath("recording/Screen")), (std::vector<int>{40, 40 + 103 + 60 + 7}));
        QCOMPARE(metadata().actualRecordedFrames, 2);
    }

    void totalFramesFollowTheDuration()
    {
        struct Case {
            int fps;
            qint64 durationMs;
            qint64 totalFrames;
        };
        // Exact, truncated, beyond 32 bits; without a duration, the number of ticks.
        for (const Case &c : {Case{24, 10000, 240}, {30, 999, 29}, {60, 100000000, 6000000}, {25, 0, 3}}) {
            m_config.fps = c.fps;
            createManager();
            m_manager->startRecording();
            for (int i = 0; i < 3; ++i)
                m_manager->tick(0);
            m_nowMs += c.durationMs;
            m_manager->stopRecording();
            QCOMPARE(metadata().fps, c.fps);
            QCOMPARE(metadata().durationMs, c.durationMs);
            QCOMPARE(metadata().totalFrames, c.totalFrames);
            QCOMPARE(metadata().actualRecordedFrames, 3);
        }
    }

    void ticksReachTheTrackOnlyWhileRecording()
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
        // A worker that lags skips frames and checkpoints, but never these.
        const QStringList calls = track->calls(0).filter(QRegularExpression("^(start|pause|stop)"));
        QCOMPARE(calls, (QStringList{"start", "pause", "start", "pause", "stop 1 40"}));
        QVERIFY(!track->calls(0).contains("frame 1"));
    }

    void metadataIsKeptUpToDate()
    {
        m_config.fps = 1;
        createManager();
        m_manager->startRecording();
        m_nowMs += 300; // nothing ticks
        QTRY_COMPARE(metadata().durationMs, qint64(300));
        QVERIFY(!metadata().complete);
        for (int i = 0; i < 25; ++i)
            m_manager->tick(28);
        QTRY_COMPARE(metadata().durationMs, qint64(1000));
        QVERIFY(metadata().actualRecordedFrames >= 25); // the timer itself may tick as well
        m_nowMs += 5;
        m_manager->pauseRecording();
        QTRY_COMPARE(metadata().durationMs, qint64(1005));
        m_nowMs += 500;
        m_manager->stopRecording();
        QVERIFY(metadata().complete);
        QCOMPARE(metadata().durationMs, qint64(1005));
        QCOMPARE(metadata().recordArea, QRect(-3, 7, 1002, 602)); // even sides
        QVERIFY(m_manager->releaseResources());
        QCOMPARE(QDir(m_dir->filePath("recording")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList{"TrackManager.meta"});
    }

    void unwritableMetadataIsReportedOnceAndAtOnce()
    {
        createManager();
        m_manager->startRecording();
        QTRY_COMPARE(metadata().fps, 25);
        QVERIFY(QDir(m_dir->path()).rename("recording", "renamed"));
        QStringList failures;
        QTRY_VERIFY((m_manager->tick(40), failures += takenFailures(), !failures.isEmpty()));
        QVERIFY2(failures[0].startsWith("Metadata: cannot write "), qPrintable(failures[0]));
        m_manager->stopRecording();
        QVERIFY(m_manager->releaseResources());
        QCOMPARE((failures + takenFailures()).size(), 1);
    }

    void failuresOfTracksAreCollected()
    {
        createManager();
        auto *early = new GatedTrack;
        early->reportFailure("Early track", "before the handler was set");
        m_manager->addTrack(early);
        QCOMPARE(takenFailures(), QStringList{"Early track: before the handler was set"});

        GatedTrack *track = addTrack();
        QSignalSpy failures(m_manager.get(), &KelRecordTrackManager::trackFailed);
        track->reportFailure("Left ear", "first");
        track->reportFailure("Left ear", "second");
        track->reportFailure("Right ear", "first");
        QCOMPARE(failures.count(), 2);
        QCOMPARE(takenFailures(), (QStringList{"Left ear: first", "Right ear: first"}));
        QCOMPARE(takenFailures(), QStringList());
    }

    void releaseWaitsForTheQueuedStops()
    {
        createManager();
        GatedTrack *other = nullptr;
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
            other->open();
            std::lock_guard lock(mutex);
            streamerGone = true;
            changed.notify_all();
        };
        QDir().mkpath(m_dir->filePath("recording/Screen"));
        m_manager->addTrack(new KelRecordScreenTrack(
            QRect(0, 0, 10, 10), m_dir->filePath("recording/Screen"), 100, std::make_unique<ScriptedStreamer>(script),
            [&](const auto &params) { return std::make_unique<ScriptedEncoder>(script, params); }));
        other = addTrack();
        m_manager->startRecording();
        other->calls(1);
        other->close(); // until the screen track is released
        QTRY_VERIFY((m_manager->tick(40), std::lock_guard(mutex), frameEntered));
        m_manager->stopRecording(); // stops waiting for the frame and queues the stop behind it

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
        QVERIFY(other->calls(0).last().startsWith("stop"));
        QCOMPARE(script.added, QVector<int>{0});
        QVERIFY(QFileInfo(m_dir->filePath("recording/Screen/frame_indexes.dat")).size() > 8);
    }

    void destructionStopsTheRecording()
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

    void timersOfTheClock()
    {
        const QMap<int, int> intervals{{1, 1000}, {24, 41}, {25, 40}, {30, 33}, {60, 16}, {1000, 1}};
        for (auto it = intervals.begin(); it != intervals.end(); ++it) {
            m_config.fps = it.key();
            createManager();
            m_manager->startRecording();
            const auto timers = m_manager->findChildren<QTimer *>();
            QCOMPARE(timers.size(), 2);
            QCOMPARE(timers[0]->interval(), it.value()); // in whole milliseconds
            QCOMPARE(timers[0]->timerType(), Qt::PreciseTimer);
            QCOMPARE(timers[1]->interval(), 500); // what a killed process loses at most
        }
    }

    void tracksOfTheConfiguration()
    {
        using Metadata = KelRecordingMetadata;
        const ScriptedInput input;
        const EnvironmentChange noServer("PULSE_SERVER", "unix:/nowhere");
        struct Track {
            bool KelRecordTrackManager::Config::*flag;
            bool Metadata::*stated;
            QString dir;
            QString name;
            bool canFail;
        };
        using Config = KelRecordTrackManager::Config;
        const Track tracks[] = {{&Config::screen, &Metadata::screenTrack, "Screen", "Screen track", true},
                                {&Config::mouse, &Metadata::mouseTrack, "Mouse", "Mouse track", false},
                                {&Config::keyboard, &Metadata::keyboardTrack, "Keyboard", "Keyboard track", false},
                                {&Config::systemAudio, &Metadata::systemAudio, "Voice", "System audio", true},
                                {&Config::microphone, &Metadata::microphoneAudio, "Voice", "Microphone", true}};
        const auto threads = [this] {
            QStringList names;
            for (const auto *thread : m_manager->findChildren<KelRecordTrackThreadWrap *>())
                names << thread->track()->objectName();
            return names;
        };
        for (const Track &track : tracks) {
            m_config = noTracks();
            m_config.*track.flag = true;
            createManager();
            QCOMPARE(threads(), track.dir == "Voice" ? QStringList() : QStringList{track.name});
            m_manager->startRecording();
            QStringList failures; // there is neither a screen nor a sound system
            QTRY_VERIFY((failures += takenFailures(), !failures.isEmpty() || !track.canFail));
            m_manager->stopRecording();
            m_manager->releaseResources();
            for (const Track &other : tracks)
                QCOMPARE(metadata().*other.stated, &other == &track);
            QCOMPARE(QDir(m_config.directory).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList{track.dir});
            QVERIFY2(!track.canFail || failures[0].startsWith(track.name), qPrintable(failures.join("; ")));
            m_manager.reset();
            QVERIFY(QDir(m_config.directory).removeRecursively());
        }
        for (const Track &track : tracks)
            m_config.*track.flag = true;
        createManager();
        QCOMPARE(threads(), (QStringList{"Screen track", "Mouse track", "Keyboard track"})); // as they are stopped
    }

private:
    QStringList takenFailures()
    {
        QStringList texts;
        for (const auto &failure : m_manager->takeFailures())
            texts << failure.text();
        return texts;
    }

    KelRecordTrackManager::Config noTracks() const
    {
        KelRecordTrackManager::Config config;
        config.directory = m_dir->filePath("recording");
        config.screen = false;
        return config;
    }

    void createManager() { m_manager = std::make_unique<TestedManager>(QRect(-3, 7, 1001, 601), m_config, m_nowMs); }

    GatedTrack *addTrack()
    {
        auto *track = new GatedTrack;
        m_manager->addTrack(track);
        return track;
    }

    KelRecordingMetadata metadata() const
    {
        KelRecordingMetadata metadata;
        metadata.durationMs = -1;
        KelRecordingMetadata::load(m_dir->filePath("recording"), &metadata);
        return metadata;
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    qint64 m_nowMs = 1'000'000;
    KelRecordTrackManager::Config m_config;
    std::unique_ptr<TestedManager> m_manager;
};

QTEST_MAIN(RecordManagerTest)
#include "tst_record_manager.moc"
