#include "avcodec/DecodedVideo.h"
#include "kelmovie/support/RecordFakes.h"
#include "record/KelRecordScreenTrack.h"

#include "support/FileSizeLimit.h"
#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <QDataStream>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>

namespace
{
QByteArray indexBytes(const QVector<int> &entries)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly); // big-endian
    stream << 1 << entries.size();
    for (const int entry : entries)
        stream << entry;
    return bytes;
}
} // namespace

class RecordScreenTrackTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void indexesChangedFrames_data();
    void indexesChangedFrames();
    void videoOfAScaledScreen();
    void framesOfAnotherSizeAreScaled();
    void unexpectedFrameNumberIsLogged();
    void checkpointsLeaveAValidFile();
    void worksWithoutAnEncoder();
    void missingVideoIsReported();
    void unwritableIndexIsReported();
    void fullDiskKeepsTheEntriesWritten();
    void lostScreenIsReportedOnce();
    void stallIsReportedOnlyAtTheStop();
    void encoderFailureIsReportedOnce();
    void releasedTrackDoesNotChangeItsFiles();

private:
    std::unique_ptr<KelRecordScreenTrack> createTrack(bool withEncoder = true);
    QString indexPath() const { return m_dir->filePath("frame_indexes.dat"); }
    QString videoPath() const { return m_dir->filePath("screen_record.mp4"); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::optional<ScreenScript> m_script;
    QStringList m_failures;
};

void RecordScreenTrackTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_script.emplace();
    m_script->pictureSize = QSize(20, 20);
    m_script->atClose = [this] { writeFile(videoPath(), "video"); };
    m_failures.clear();
}

std::unique_ptr<KelRecordScreenTrack> RecordScreenTrackTest::createTrack(bool withEncoder)
{
    auto track = std::make_unique<KelRecordScreenTrack>(
        QRect(0, 0, 10, 10), m_dir->path(), 100, std::make_unique<ScriptedStreamer>(*m_script),
        [&](const KelAsyncEncoder::Params &params) {
            return withEncoder ? std::make_unique<ScriptedEncoder>(*m_script, params) : nullptr;
        });
    track->setFailureHandler(
        [this](const QString &name, const QString &problem) { m_failures << name + ": " + problem; });
    return track;
}

void RecordScreenTrackTest::indexesChangedFrames_data()
{
    // The logic frames that reach the track: "1-" if nothing has changed, "1b" if the encoder is busy, "1x" if the
    // screen cannot be read.
    const TestTable<QString, int, QVector<int>> row("ticked", "frameCount", "entries");

    using Entries = QVector<int>;
    row("every frame", "0 1 2", 3, Entries{0, 1, 2});
    row("first change late", "0- 1- 3 4", 5, Entries{-1, -1, -1, 0, 1});
    row("still at the end", "0 1- 2-", 4, Entries{0, 0, 0, 0});
    row("refused ticks", "0 4 5", 7, Entries{0, 0, 0, 0, 1, 2, 2});
    row("never a change", "1- 2-", 3, Entries{-1, -1, -1});
    row("more entries than ticks", "0 1 2", 2, Entries{0, 1, 2});
    row("no tick", "", 0, Entries{});
    row("busy encoder", "0 1b 2", 3, Entries{0, 0, 1});
    row("unreadable screen", "0x 1", 2, Entries{-1, 0});
}

void RecordScreenTrackTest::indexesChangedFrames()
{
    QFETCH(QString, ticked);
    QFETCH(int, frameCount);
    QFETCH(QVector<int>, entries);
    const auto track = createTrack();
    for (const QString &tick : ticked.split(' ', Qt::SkipEmptyParts)) {
        m_script->changed = !tick.endsWith('-');
        m_script->busy = tick.endsWith('b');
        m_script->captureFails = tick.endsWith('x');
        track->recordFrame(tick.left(1).toInt());
    }
    track->stopRecording(frameCount, 1000);
    QCOMPARE(readFile(indexPath()), indexBytes(entries));
    QCOMPARE(track->frameCount(), m_script->added.size());
    QCOMPARE(m_script->captures, m_script->added.size());
    QCOMPARE(m_script->closes, 1);
    QCOMPARE(m_failures, QStringList());
}

/// With the real encoder.
void RecordScreenTrackTest::videoOfAScaledScreen()
{
    KelScreenManager::instance()->setBackend(std::make_unique<ScriptedBackend>(*m_script));
    const auto putBack = qScopeGuard([] { KelScreenManager::instance()->setBackend(nullptr); });
    constexpr int kFrames = 25;
    const QSize physical(200, 140);
    KelRecordScreenTrack track(QRect(10, 20, 100, 70), m_dir->path(), 0, 100);
    for (int frame = 0; frame < kFrames; ++frame) {
        m_script->picture = textImage(physical, frame);
        QVERIFY(QTest::qWaitFor([&] { // the encoder may be busy
            track.recordFrame(frame);
            return track.frameCount() > frame;
        }));
    }
    track.stopRecording(kFrames, 1000);

    const DecodedVideo video(videoPath());
    QCOMPARE(video.errorString, QString());
    QCOMPARE(video.fps, 30.0);
    QCOMPARE(int(video.frames.size()), kFrames);
    for (int frame = 0; frame < kFrames; ++frame) {
        const auto i = std::size_t(frame);
        QCOMPARE(video.times[i], qint64(frame));
        QCOMPARE(bool(video.keyframes[i]), frame % 10 == 0);
        QCOMPARE(video.rgbImage(frame).size(), physical);
        QVERIFY(psnr(video.rgbImage(frame), textImage(physical, frame)) > 48);
    }
}

void RecordScreenTrackTest::framesOfAnotherSizeAreScaled()
{
    const auto track = createTrack();
    QCOMPARE(m_script->params.queueCapacity, 4); // what a slow encoder may keep in memory
    LogCapture log;
    m_script->pictureSize = QSize(15, 20);
    track->recordFrame(0);
    track->recordFrame(1);
    m_script->pictureSize = QSize(20, 20);
    track->recordFrame(2);
    QCOMPARE(m_script->addedSizes, QVector<QSize>(3, QSize(20, 20)));
    const QString line =
        "W [Performance Warning] Unexpected frame size mismatch: QSize(15, 20) expected: QSize(20, 20)";
    QCOMPARE(log.take(), (QStringList{line, line}));
}

void RecordScreenTrackTest::unexpectedFrameNumberIsLogged()
{
    const auto track = createTrack();
    LogCapture log;
    track->recordFrame(0);
    m_script->answerOffset = 7;
    track->recordFrame(1);
    m_script->answerOffset = 0;
    track->recordFrame(2);
    track->stopRecording(3, 100);
    QCOMPARE(log.take(), QStringList{"W Encoder returned unexpected frame index: 8 Expected: 1"});
    QCOMPARE(readFile(indexPath()), indexBytes({0, 1, 2}));
}

void RecordScreenTrackTest::checkpointsLeaveAValidFile()
{
    const auto track = createTrack();
    track->checkpoint(0);
    QCOMPARE(readFile(indexPath()), indexBytes({}));
    track->recordFrame(0);
    track->recordFrame(1);
    m_script->changed = false;
    track->recordFrame(2); // a still screen advances, too
    track->checkpoint(3);
    QCOMPARE(readFile(indexPath()), indexBytes({0, 1, 1}));
    m_script->changed = true;
    track->recordFrame(3);
    track->recordFrame(5);
    QCOMPARE(readFile(indexPath()), indexBytes({0, 1, 1}));
    track->checkpoint(6);
    QCOMPARE(readFile(indexPath()), indexBytes({0, 1, 1, 2, 2, 3}));
    track->stopRecording(7, 100);
    QCOMPARE(readFile(indexPath()), indexBytes({0, 1, 1, 2, 2, 3, 3}));
}

void RecordScreenTrackTest::worksWithoutAnEncoder()
{
    const auto track = createTrack(false);
    LogCapture log;
    track->recordFrame(0);
    track->stopRecording(2, 100);
    QCOMPARE(m_script->captures, 1);
    QCOMPARE(readFile(indexPath()), indexBytes({-1, -1}));
    QCOMPARE(log.take(), QStringList());
}

void RecordScreenTrackTest::missingVideoIsReported()
{
    for (const bool exists : {false, true}) {
        m_script->closes = 0;
        m_script->atClose = [&] {
            if (exists)
                writeFile(videoPath(), {});
        };
        m_failures.clear();
        const auto track = createTrack();
        LogCapture log;
        track->stopRecording(1, 100);
        QCOMPARE(log.take(), QStringList{QString("C Failed to generate video file: \"%1\"").arg(videoPath())});
        QCOMPARE(m_failures.size(), 1);
    }
}

void RecordScreenTrackTest::unwritableIndexIsReported()
{
    QVERIFY(QDir().mkpath(indexPath() + "/occupied"));
    const auto track = createTrack();
    LogCapture log;
    track->recordFrame(0);
    track->checkpoint(1);
    track->stopRecording(2, 100);
    QCOMPARE(log.take(),
             QStringList{QString("C Failed to open frame index file for writing: \"%1\"").arg(indexPath())});
    QCOMPARE(m_failures.size(), 1);
    QCOMPARE(m_script->closes, 1); // the video is still completed
}

void RecordScreenTrackTest::fullDiskKeepsTheEntriesWritten()
{
    // Room for the version; for count and first entry.
    for (const auto &[space, entries] : {std::pair(4, 0), {12, 1}}) {
        m_failures.clear();
        const auto track = createTrack();
        track->recordFrame(0);
        {
            const FileSizeLimit limit{quint64(space)};
            track->checkpoint(1);
            QCOMPARE(m_failures.size(), 1 - entries);
            track->recordFrame(1);
            track->recordFrame(2);
            track->checkpoint(3);
            QCOMPARE(m_failures.size(), 1);
            QVERIFY2(m_failures[0].contains(FileSizeLimit::errorText()), qPrintable(m_failures[0]));
            QCOMPARE(readFile(indexPath()), entries ? indexBytes({0}) : indexBytes({}).left(space));
        }
        // Now there is room again.
        track->stopRecording(4, 100);
        QCOMPARE(readFile(indexPath()), indexBytes({0, 1, 2, 2}));
        QCOMPARE(m_failures.size(), 1);
    }
}

void RecordScreenTrackTest::lostScreenIsReportedOnce()
{
    const auto track = createTrack();
    track->recordFrame(0);
    m_script->changed = false;
    track->recordFrame(1);
    QCOMPARE(m_failures, QStringList());
    m_script->streamerError = "the X server is gone";
    track->recordFrame(2);
    track->recordFrame(3);
    QCOMPARE(m_failures, QStringList{"Screen track: the X server is gone"});
    track->stopRecording(4, 100);
    QCOMPARE(readFile(indexPath()), indexBytes({0, 0, 0, 0}));
}

void RecordScreenTrackTest::stallIsReportedOnlyAtTheStop()
{
    const auto track = createTrack();
    track->recordFrame(0);
    m_script->changed = false;
    m_script->isStalled = true;
    track->recordFrame(1);
    QCOMPARE(m_failures, QStringList());
    track->stopRecording(2, 100);
    QCOMPARE(m_failures.size(), 1);
    QCOMPARE(readFile(indexPath()), indexBytes({0, 0}));
}

void RecordScreenTrackTest::encoderFailureIsReportedOnce()
{
    const auto track = createTrack();
    m_script->encoderFailed("No space left on device");
    m_script->streamerError = "and another thing";
    m_script->changed = false;
    track->recordFrame(0);
    QCOMPARE(m_failures, QStringList{"Screen track: No space left on device"});
}

void RecordScreenTrackTest::releasedTrackDoesNotChangeItsFiles()
{
    const auto track = createTrack();
    track->recordFrame(0);
    track->stopRecording(2, 100);
    track->releaseResources();
    track->recordFrame(2);
    track->checkpoint(3);
    track->stopRecording(3, 100);
    QCOMPARE(readFile(indexPath()), indexBytes({0, 0}));
    QCOMPARE(m_script->closes, 1);
}

int main(int argc, char **argv)
{
    qputenv("QT_SCALE_FACTOR", "2"); // of all screens
    QGuiApplication app(argc, argv);
    RecordScreenTrackTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_record_screen_track.moc"
