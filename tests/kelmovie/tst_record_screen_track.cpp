#include "RecordFakes.h"
#include "record/KelRecordScreenTrack.h"

#include "support/FileSizeLimit.h"
#include "support/LogCapture.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <optional>

namespace
{
QByteArray indexBytes(const QVector<int> &entries)
{
    QByteArray bytes;
    const auto add = [&](quint32 number) {
        for (int shift = 24; shift >= 0; shift -= 8)
            bytes.append(char(number >> shift));
    };
    add(1);
    add(quint32(entries.size()));
    for (const int entry : entries)
        add(quint32(entry));
    return bytes;
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
} // namespace

class TestRecordScreenTrack : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void indexesChangedFrames_data();
    void indexesChangedFrames();
    void bigEndianOnDisk();
    void busyEncoderDropsTheFrame();
    void foreignPictureSizeIsRescaled();
    void unexpectedFrameNumberIsLogged();
    void checkpointsLeaveAValidFile();
    void worksWithoutAnEncoder();
    void missingVideoIsReported();
    void unwritableIndexIsReported();
    void fullDiskKeepsTheEntriesWritten();
    void lostScreenIsReportedOnce();
    void encoderFailureIsReportedOnce();
    void unreadableScreenEncodesNothing();
    void releasedTrackLeavesItsFilesAlone();

private:
    std::unique_ptr<KelRecordScreenTrack> createTrack(bool withEncoder = true);
    QString indexPath() const { return m_dir->filePath("frame_indexes.dat"); }
    QString videoPath() const { return m_dir->filePath("screen_record.mp4"); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::optional<ScreenScript> m_script;
    QStringList m_failures;
};

void TestRecordScreenTrack::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_script.emplace();
    m_script->atClose = [this] {
        QFile video(videoPath());
        QVERIFY(video.open(QIODevice::WriteOnly));
        video.write("video");
    };
    m_failures.clear();
}

void TestRecordScreenTrack::cleanup()
{
    m_dir.reset();
}

std::unique_ptr<KelRecordScreenTrack> TestRecordScreenTrack::createTrack(bool withEncoder)
{
    auto track = std::make_unique<KelRecordScreenTrack>(
        QRect(0, 0, 10, 10), m_dir->path(), std::make_unique<ScriptedStreamer>(*m_script),
        withEncoder ? std::make_unique<ScriptedEncoder>(*m_script) : nullptr);
    track->setFailureHandler(
        [this](const QString &name, const QString &problem) { m_failures << name + ": " + problem; });
    return track;
}

void TestRecordScreenTrack::indexesChangedFrames_data()
{
    QTest::addColumn<QVector<int>>("ticked"); // logic frames that reach the track; negative: nothing has changed
    QTest::addColumn<int>("frameCount");
    QTest::addColumn<QVector<int>>("entries");

    QTest::newRow("every frame") << QVector<int>{0, 1, 2} << 3 << QVector<int>{0, 1, 2};
    QTest::newRow("first change late") << QVector<int>{-1, -2, 3, 4} << 5 << QVector<int>{-1, -1, -1, 0, 1};
    QTest::newRow("still at the end") << QVector<int>{0, -1, -2} << 4 << QVector<int>{0, 0, 0, 0};
    QTest::newRow("refused ticks") << QVector<int>{0, 4, 5} << 7 << QVector<int>{0, 0, 0, 0, 1, 2, 2};
    QTest::newRow("never a change") << QVector<int>{-1, -2} << 3 << QVector<int>{-1, -1, -1};
    QTest::newRow("more entries than ticks") << QVector<int>{0, 1, 2} << 2 << QVector<int>{0, 1, 2};
    QTest::newRow("no tick") << QVector<int>{} << 0 << QVector<int>{};
}

void TestRecordScreenTrack::indexesChangedFrames()
{
    QFETCH(QVector<int>, ticked);
    QFETCH(int, frameCount);
    QFETCH(QVector<int>, entries);
    const auto track = createTrack();
    for (const int frame : qAsConst(ticked)) {
        m_script->changed = frame >= 0;
        track->recordFrame(qAbs(frame));
    }
    track->stopRecording(frameCount, 1000);
    QCOMPARE(read(indexPath()), indexBytes(entries));
    QCOMPARE(track->frameCount(), m_script->added.size());
    QCOMPARE(m_script->captures, m_script->added.size());
    QCOMPARE(m_script->closes, 1);
    QCOMPARE(m_failures, QStringList());
}

void TestRecordScreenTrack::bigEndianOnDisk()
{
    const auto track = createTrack();
    track->recordFrame(1);
    track->stopRecording(3, 100);
    QCOMPARE(read(indexPath()).toHex(' '), QByteArray("00 00 00 01 00 00 00 03 ff ff ff ff 00 00 00 00 00 00 00 00"));
}

void TestRecordScreenTrack::busyEncoderDropsTheFrame()
{
    const auto track = createTrack();
    track->recordFrame(0);
    m_script->busy = true;
    track->recordFrame(1);
    m_script->busy = false;
    track->recordFrame(2);
    track->stopRecording(3, 100);
    QCOMPARE(m_script->captures, 2);
    QCOMPARE(read(indexPath()), indexBytes({0, 0, 1}));
}

void TestRecordScreenTrack::foreignPictureSizeIsRescaled()
{
    const auto track = createTrack();
    LogCapture log;
    m_script->pictureSize = QSize(15, 20);
    track->recordFrame(0);
    track->recordFrame(1);
    m_script->pictureSize = QSize(10, 10);
    track->recordFrame(2);
    QCOMPARE(m_script->addedSizes, QVector<QSize>(3, QSize(10, 10)));
    const QString line =
        "W [Performance Warning] Unexpected frame size mismatch: QSize(15, 20) expected: QSize(10, 10)";
    QCOMPARE(log.take(), (QStringList{line, line}));
}

void TestRecordScreenTrack::unexpectedFrameNumberIsLogged()
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
    QCOMPARE(read(indexPath()), indexBytes({0, 1, 2}));
}

void TestRecordScreenTrack::checkpointsLeaveAValidFile()
{
    const auto track = createTrack();
    track->checkpoint(0);
    QCOMPARE(read(indexPath()), indexBytes({}));
    track->recordFrame(0);
    track->recordFrame(1);
    m_script->changed = false;
    track->recordFrame(2); // a still screen advances all the same
    track->checkpoint(3);
    QCOMPARE(read(indexPath()), indexBytes({0, 1, 1}));
    m_script->changed = true;
    track->recordFrame(3);
    track->recordFrame(5);
    QCOMPARE(read(indexPath()), indexBytes({0, 1, 1}));
    track->checkpoint(6);
    QCOMPARE(read(indexPath()), indexBytes({0, 1, 1, 2, 2, 3}));
    track->stopRecording(7, 100);
    QCOMPARE(read(indexPath()), indexBytes({0, 1, 1, 2, 2, 3, 3}));
}

void TestRecordScreenTrack::worksWithoutAnEncoder()
{
    const auto track = createTrack(false);
    LogCapture log;
    track->recordFrame(0);
    track->stopRecording(2, 100);
    QCOMPARE(m_script->captures, 1);
    QCOMPARE(read(indexPath()), indexBytes({-1, -1}));
    QCOMPARE(log.take(), QStringList());
}

void TestRecordScreenTrack::missingVideoIsReported()
{
    for (const bool exists : {false, true}) {
        m_script->closes = 0;
        m_script->atClose = [&] {
            if (exists)
                QVERIFY(QFile(videoPath()).open(QIODevice::WriteOnly));
        };
        m_failures.clear();
        const auto track = createTrack();
        LogCapture log;
        track->stopRecording(1, 100);
        QCOMPARE(log.take(), QStringList{QString("C Failed to generate video file: \"%1\"").arg(videoPath())});
        QCOMPARE(m_failures.size(), 1);
    }
}

void TestRecordScreenTrack::unwritableIndexIsReported()
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
    QCOMPARE(m_script->closes, 1); // the video is completed all the same
}

void TestRecordScreenTrack::fullDiskKeepsTheEntriesWritten()
{
    const auto track = createTrack();
    track->recordFrame(0);
    {
        const FileSizeLimit limit(12);
        track->checkpoint(1);
        QCOMPARE(m_failures, QStringList());
        track->recordFrame(1);
        track->recordFrame(2);
        track->checkpoint(3);
        QCOMPARE(m_failures.size(), 1);
        QVERIFY2(m_failures[0].contains("File too large"), qPrintable(m_failures[0]));
        QCOMPARE(read(indexPath()), indexBytes({0}));
    }
    // There is room again.
    track->stopRecording(4, 100);
    QCOMPARE(read(indexPath()), indexBytes({0, 1, 2, 2}));
    QCOMPARE(m_failures.size(), 1);
}

void TestRecordScreenTrack::lostScreenIsReportedOnce()
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
    QCOMPARE(read(indexPath()), indexBytes({0, 0, 0, 0}));
}

void TestRecordScreenTrack::encoderFailureIsReportedOnce()
{
    const auto track = createTrack();
    m_script->encoderFailed("No space left on device");
    m_script->streamerError = "and another thing";
    m_script->changed = false;
    track->recordFrame(0);
    QCOMPARE(m_failures, QStringList{"Screen track: No space left on device"});
}

void TestRecordScreenTrack::unreadableScreenEncodesNothing()
{
    const auto track = createTrack();
    m_script->captureFails = true;
    track->recordFrame(0);
    m_script->captureFails = false;
    track->recordFrame(1);
    track->stopRecording(2, 100);
    QCOMPARE(m_script->added, QVector<int>{0});
    QCOMPARE(read(indexPath()), indexBytes({-1, 0}));
}

void TestRecordScreenTrack::releasedTrackLeavesItsFilesAlone()
{
    const auto track = createTrack();
    track->recordFrame(0);
    track->stopRecording(2, 100);
    track->releaseResources();
    track->recordFrame(2);
    track->checkpoint(3);
    track->stopRecording(3, 100);
    QCOMPARE(read(indexPath()), indexBytes({0, 0}));
    QCOMPARE(m_script->closes, 1);
}

QTEST_MAIN(TestRecordScreenTrack)
#include "tst_record_screen_track.moc"
