#include "facade/KelMultiTrackRecorder.h"
#include "playback/KelPlaybackTrackManager.h"
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

/// Logic frames according to the metadata on disk; -1 before there is any.
int framesOnDisk(const QString &dir)
{
    KelRecordingMetadata metadata;
    return QFileInfo::exists(KelRecordingMetadata::filePath(dir)) && KelRecordingMetadata::load(dir, &metadata)
               ? metadata.actualRecordedFrames
               : -1;
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
    return qAbs(a.red() - b.red()) < 8 && qAbs(a.green() - b.green()) < 8 && qAbs(a.blue() - b.blue()) < 8;
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
    void init();

    void killedProcess_data();
    void killedProcess();
    void fullDisk();

private:
    QString outputDir() const { return m_dir->filePath("recording"); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void RecordingSurvivesTest::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
}

void RecordingSurvivesTest::killedProcess_data()
{
    QTest::addColumn<bool>("screenChanges");
    QTest::newRow("changing screen") << true;
    QTest::newRow("still screen") << false;
}

void RecordingSurvivesTest::killedProcess()
{
    QFETCH(bool, screenChanges);
    PaintedWindow window(kArea, qRgb(200, 0, 0));

    QProcess recorder;
    recorder.setProcessChannelMode(QProcess::ForwardedChannels);
    recorder.start(QCoreApplication::applicationFilePath(), {"--record", outputDir()});
    QTRY_VERIFY_WITH_TIMEOUT(framesOnDisk(outputDir()) >= kFps, kWaitMs);
    if (screenChanges)
        window.paint(qRgb(0, 0, 200));
    const int framesBefore = framesOnDisk(outputDir());
    // Two checkpoints later, everything painted has been encoded.
    QTRY_VERIFY_WITH_TIMEOUT(framesOnDisk(outputDir()) >= framesBefore + 2 * kFps, kWaitMs);
    QCOMPARE(KelRecordingState::stateOf(outputDir()), KelRecordingState::State::InProgress);
    KelMultiTrackRecorder second;
    configure(second, outputDir());
    QVERIFY(!second.startRecording());
    QVERIFY2(second.lastError().contains("Another recording is running"), qPrintable(second.lastError()));
    recorder.kill();
    QVERIFY(recorder.waitForFinished(kWaitMs));
    QCOMPARE(KelRecordingState::stateOf(outputDir()), KelRecordingState::State::Interrupted);

    KelRecordingMetadata metadata;
    QVERIFY(KelRecordingMetadata::load(outputDir(), &metadata));
    QVERIFY(!metadata.complete);
    QVERIFY(metadata.durationMs >= 2000);
    KelPlaybackTrackManager playback(outputDir(), false);
    QVERIFY2(playback.isValidRecording(), qPrintable(playback.errorString()));
    // Metadata and index are written at the same tick, but the kill may have come between the two.
    QVERIFY(qAbs(playback.totalFrames() - metadata.actualRecordedFrames) <= 2 * kFps);
    QVERIFY(isClose(colorAt(playback, 0), qRgb(200, 0, 0)));
    const QRgb last = screenChanges ? qRgb(0, 0, 200) : qRgb(200, 0, 0);
    QVERIFY(isClose(colorAt(playback, playback.totalFrames() - 1), last));
}

void RecordingSurvivesTest::fullDisk()
{
    PaintedWindow window(kArea, qRgb(0, 200, 0));
    KelMultiTrackRecorder recorder;
    QStringList errors;
    connect(&recorder, &KelMultiTrackRecorder::recordingError, this, [&](const QString &error) { errors << error; });
    configure(recorder, outputDir());
    {
        const FileSizeLimit limit(1 << 20);
        QVERIFY(recorder.startRecording());
        // Opening the screen takes a second with wine; frames are counted before its first image arrives.
        QTRY_VERIFY_WITH_TIMEOUT(framesOnDisk(outputDir()) > 2 * kFps, kWaitMs);
        QTRY_VERIFY_WITH_TIMEOUT((window.paint(noise()), !errors.isEmpty()), kWaitMs);
        QVERIFY(recorder.isRecording());
        const int framesAtFailure = framesOnDisk(outputDir());
        QTRY_VERIFY_WITH_TIMEOUT(framesOnDisk(outputDir()) > framesAtFailure, kWaitMs); // the other tracks go on
        recorder.stopRecording();
    }
    QCOMPARE(errors.size(), 1);
    QVERIFY2(errors[0].startsWith("Screen track: Cannot write " + outputDir()), qPrintable(errors[0]));

    QVERIFY(!QFileInfo::exists(outputDir() + "/recording.lock"));
    QVERIFY(recorder.loadRecording(outputDir()));
    QVERIFY2(recorder.playbackManager()->isValidRecording(), qPrintable(recorder.playbackManager()->errorString()));
    QCOMPARE(recorder.playbackManager()->totalFrames(), framesOnDisk(outputDir()));
    QVERIFY(isClose(colorAt(*recorder.playbackManager(), 0), qRgb(0, 200, 0)));
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
