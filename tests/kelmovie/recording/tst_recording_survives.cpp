#include "facade/KelMultiTrackRecorder.h"
#include "playback/KelPlaybackTrackManager.h"
#include "recording/FrameIndexReader.h"
#include "recording/KelRecordingMetadata.h"
#include "recording/KelRecordingState.h"

#include "support/FileSizeLimit.h"
#include "support/PaintedWindow.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QtTest>

namespace
{
constexpr QRect kArea(40, 30, 320, 240);
constexpr int kFps = 25;
constexpr int kWaitMs = 60000;
constexpr QRgb kRed = 0xffc80000;
constexpr QRgb kBlue = 0xff0000c8;

void configure(KelMultiTrackRecorder &recorder, const QString &dir)
{
    KelMultiTrackRecorder::RecordConfig config;
    config.outputDir = dir;
    config.fps = kFps;
    config.enableMouse = false;
    recorder.setRecordConfig(config);
    recorder.setRecordArea(kArea);
}

/// Records until the process is killed.
int recordForever(int argc, char **argv, const QString &dir)
{
    QGuiApplication app(argc, argv);
    KelMultiTrackRecorder recorder;
    configure(recorder, dir);
    return recorder.startRecording() ? QGuiApplication::exec() : 1;
}

KelRecordingMetadata metadataOnDisk(const QString &dir)
{
    KelRecordingMetadata metadata;
    if (QFileInfo::exists(KelRecordingMetadata::filePath(dir)))
        KelRecordingMetadata::load(dir, &metadata);
    return metadata;
}

/// The video frame of each logic frame.
std::vector<int> indexOnDisk(const QString &dir)
{
    std::vector<int> index;
    if (QFileInfo::exists(dir + "/Screen/frame_indexes.dat"))
        kel::readFrameIndex(dir + "/Screen", index);
    return index;
}

/// The number of the last video frame; -1 before there is any.
int lastPicture(const std::vector<int> &index)
{
    return index.empty() ? -1 : index.back();
}

QColor colorAt(KelPlaybackTrackManager &playback, int frame)
{
    playback.seek(frame);
    QImage picture(kArea.size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    playback.paint(&painter);
    painter.end();
    return picture.pixelColor(picture.rect().center());
}

bool isClose(const QColor &a, const QColor &b)
{
    return qAbs(a.red() - b.red()) <= 2 && qAbs(a.green() - b.green()) <= 2 && qAbs(a.blue() - b.blue()) <= 2;
}

QImage noise()
{
    QImage image(kArea.size(), QImage::Format_ARGB32_Premultiplied);
    QRandomGenerator::global()->fillRange(reinterpret_cast<quint32 *>(image.bits()),
                                          image.sizeInBytes() / int(sizeof(quint32)));
    return image;
}
} // namespace

/// Recordings of a real screen that end abnormally.
class RecordingSurvivesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_dir = std::make_unique<QTemporaryDir>(); }
    void killedProcess();
    void fullDisk();

private:
    QString outputDir() const { return m_dir->filePath("recording"); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void RecordingSurvivesTest::killedProcess()
{
    PaintedWindow window(kArea, kRed);
    QElapsedTimer sinceStart;
    sinceStart.start();
    QProcess recorder;
    recorder.setProcessChannelMode(QProcess::ForwardedChannels);
    recorder.start(QCoreApplication::applicationFilePath(), {"--record", outputDir()});
    QTRY_VERIFY_WITH_TIMEOUT(lastPicture(indexOnDisk(outputDir())) >= 0, kWaitMs);
    const std::vector<int> beforeChange = indexOnDisk(outputDir());
    window.paint(kBlue);
    QTRY_VERIFY_WITH_TIMEOUT(lastPicture(indexOnDisk(outputDir())) > lastPicture(beforeChange), kWaitMs);
    QTRY_VERIFY_WITH_TIMEOUT(metadataOnDisk(outputDir()).durationMs > 1000, kWaitMs);
    QCOMPARE(KelRecordingState::stateOf(outputDir()), KelRecordingState::State::InProgress);
    KelMultiTrackRecorder second;
    configure(second, outputDir());
    QVERIFY(!second.startRecording());
    QVERIFY2(second.lastError().contains("Another recording is running"), qPrintable(second.lastError()));
    const KelRecordingMetadata seen = metadataOnDisk(outputDir());
    const auto seenFrames = int(indexOnDisk(outputDir()).size());
    recorder.kill();
    QVERIFY(recorder.waitForFinished(kWaitMs));
    QCOMPARE(KelRecordingState::stateOf(outputDir()), KelRecordingState::State::Interrupted);

    // What was on the disk is there, and no more than can have been recorded.
    const KelRecordingMetadata metadata = metadataOnDisk(outputDir());
    QVERIFY(!metadata.complete);
    QVERIFY(metadata.durationMs >= seen.durationMs && metadata.durationMs < sinceStart.elapsed());
    KelPlaybackTrackManager playback(outputDir(), false);
    QVERIFY2(playback.isValidRecording(), qPrintable(playback.errorString()));
    QVERIFY(playback.totalFrames() >= seenFrames && playback.totalFrames() < sinceStart.elapsed() * kFps / 1000);
    QVERIFY(playback.durationMs() >= seen.durationMs && playback.durationMs() < sinceStart.elapsed());
    QVERIFY(isClose(colorAt(playback, int(beforeChange.size()) - 1), kRed));
    QVERIFY(isClose(colorAt(playback, playback.totalFrames() - 1), kBlue));
}

void RecordingSurvivesTest::fullDisk()
{
    PaintedWindow window(kArea, kRed);
    KelMultiTrackRecorder recorder;
    QStringList errors;
    connect(&recorder, &KelMultiTrackRecorder::recordingError, this, [&](const QString &error) { errors << error; });
    configure(recorder, outputDir());
    std::size_t redFrames = 0;
    {
        const FileSizeLimit limit(1 << 20);
        QVERIFY(recorder.startRecording());
        QTRY_VERIFY_WITH_TIMEOUT(lastPicture(indexOnDisk(outputDir())) >= 0, kWaitMs);
        redFrames = indexOnDisk(outputDir()).size();
        QTRY_VERIFY_WITH_TIMEOUT((window.paint(noise()), !errors.isEmpty()), kWaitMs);
        QVERIFY(recorder.isRecording());
        const int framesAtFailure = metadataOnDisk(outputDir()).actualRecordedFrames;
        QTRY_VERIFY_WITH_TIMEOUT(metadataOnDisk(outputDir()).actualRecordedFrames > framesAtFailure, kWaitMs);
        recorder.stopRecording();
    }
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors[0].startsWith("Screen track: Cannot write " + outputDir()), qPrintable(errors[0]));

    QVERIFY(!QFileInfo::exists(outputDir() + "/recording.lock"));
    QVERIFY(recorder.loadRecording(outputDir()));
    KelPlaybackTrackManager &playback = *recorder.playbackManager();
    QVERIFY2(playback.isValidRecording(), qPrintable(playback.errorString()));
    QCOMPARE(playback.totalFrames(), metadataOnDisk(outputDir()).actualRecordedFrames);
    QVERIFY(isClose(colorAt(playback, int(redFrames) - 1), kRed));
    QVERIFY(!isClose(colorAt(playback, playback.totalFrames() - 1), kRed));
}

int main(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--record") == 0)
        return recordForever(argc, argv, QString::fromLocal8Bit(argv[2]));
    QGuiApplication app(argc, argv);
    RecordingSurvivesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_recording_survives.moc"
