#include "kelmovie/support/ExportFixture.h"
#include "support/TestTable.h"

#include <KelMovie/KelMovieConfig.h>

#include <QPainter>
#include <QRegularExpression>
#include <QtTest>

#include <limits>

using namespace kel;

using SetUp = std::function<void()>;
Q_DECLARE_METATYPE(SetUp)

class ExportPipelineTest : public QObject, ExportFixture
{
    Q_OBJECT

private slots:
    void init()
    {
        reset(250);
        manager->seek(33);
    }
    void exportsEachFrame();
    void placesFile();
    void fillsUncoveredPixels();
    void exportsWithoutMetadata();
    void showsTimeWithinRange();
    void cleanup() { gKelMovieConfig = {}; }
    void failures_data();
    void failures();
    void unsupportedFormat();
    void cancel_data();
    void cancel();
    void paintsUnchangedFramesOnce();
    void warnsAboutFailedFrames();
    void recordingClosedDuringExport();
    void monitorThrows();

private:
    using ExportFixture::runExport;
    bool runExport() { return runExport(scriptedEncoders(encoder)); }

    QImage composed()
    {
        QImage image(320, 120, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        QPainter painter(&image);
        manager->paint(&painter);
        return image;
    }
    void setFormat(int format)
    {
        request.format = format;
        request.outputPath = outputDir->filePath(format == 0 ? "out.mp4" : "out.gif");
    }
};

void ExportPipelineTest::exportsEachFrame()
{
    request.speed = 2.0;
    request.quality = 77;
    manager->play();
    int exportingFrames = 0;
    encoder->onFrame = [&](int) { exportingFrames += engine().isExporting(); };
    QVERIFY2(runExport(), qPrintable(error));
    QVector<int> expected;
    for (int i = 0; i < 125; ++i)
        expected.append(int(i * 249 / 124.0 + 0.5));
    QCOMPARE(encoder->frames, expected);
    QCOMPARE(encoder->size, QSize(64, 48));
    QCOMPARE(encoder->fps, 25);
    QCOMPARE(encoder->quality, 77);

    QCOMPARE(exportingFrames, 125);
    QVERIFY(!engine().isExporting());
    QCOMPARE(manager->state(), KelPlaybackTrackManager::Paused);
    QCOMPARE(manager->currentFrame(), 33);

    QCOMPARE(monitor.reports.first(), 0);
    QCOMPARE(monitor.reports.last(), 100);
    QVERIFY(std::is_sorted(monitor.reports.cbegin(), monitor.reports.cend()));
    QVERIFY(monitor.reports.contains(45) && monitor.reports.contains(95));
    QVERIFY(monitor.questions >= 125);
}

void ExportPipelineTest::placesFile()
{
    for (const int format : {0, 1}) {
        for (const bool exists : {false, true}) {
            init();
            setFormat(format);
            if (exists)
                writeFile(request.outputPath, "old");
            monitor.cancelFromPercent = 100; // too late
            QVERIFY2(runExport(), qPrintable(error));
            QCOMPARE(output(), QByteArray("encoded"));
            QVERIFY(encoder->path.startsWith(outputDir->path())); // on the disk that must have room for the file anyway
            QVERIFY(isTidy() && error.isEmpty());
        }
    }
}

void ExportPipelineTest::fillsUncoveredPixels()
{
    decoder->frameSize = QSize(32, 48);
    loadManager();
    request.trimStartMs = request.trimEndMs = 4'000;
    QVERIFY(runExport());
    QCOMPARE(encoder->frames, QVector<int>{99});
    QCOMPARE(encoder->corners, QVector<QRgb>{QColor(Qt::black).rgba()});
}

/// A preview with the better rule shows the same.
void ExportPipelineTest::showsTimeWithinRange()
{
    gKelMovieConfig.playbackProgressEnable = true;
    for (const bool timeFollowsRecording : {false, true}) {
        recording->size(320, 120);
        KelPlaybackRules rules;
        rules.timeFollowsRecording = timeFollowsRecording;
        loadManager(rules);
        manager->seek(60);
        const QImage ofWhole = composed();
        const auto exported = [&] {
            QImage image;
            encoder = std::make_shared<EncoderScript>();
            encoder->onFrame = [&](int) {
                engine().setFrameSilently(60);
                image = composed();
            };
            return runExport() ? image : QImage();
        };
        request.trimStartMs = 1010;
        request.trimEndMs = 3040;
        request.speed = 0.5;
        const QImage ofRange = exported();
        QVERIFY(ofRange != ofWhole);
        manager->seek(60);
        QCOMPARE(composed(), ofWhole);

        manager->setTrimRange(1010, 3040);
        manager->setSpeed(0.5);
        if (timeFollowsRecording)
            QCOMPARE(composed(), ofRange);
        QCOMPARE(exported(), ofRange);
    }
}

void ExportPipelineTest::exportsWithoutMetadata()
{
    recording->without("TrackManager.meta");
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot open manager metadata:"));
    loadManager();
    QVERIFY2(runExport(), qPrintable(error));
    QCOMPARE(encoder->size, decoder->frameSize);
    QCOMPARE(encoder->frames.size(), 250);
    QCOMPARE(encoder->frames.last(), 249);
}

void ExportPipelineTest::failures_data()
{
    const TestTable<QString, SetUp> row("text", "setUp");
    row("no manager", "Track manager is null", [this] { request.playbackManager = nullptr; });
    row("no recording", "Video file not found", [this] {
        recording->without("Screen/screen_record.mp4");
        loadManager();
    });
    row("no area", "Invalid playback area size", [this] {
        recording->area(QRect());
        decoder->frameSize = QSize(0, 0);
        loadManager();
    });
    row("speed 0", "Invalid export speed", [this] { request.speed = 0.0; });
    row("no speed", "Invalid export speed", [this] { request.speed = std::numeric_limits<double>::quiet_NaN(); });
    row("too slow", "Too many frames to export", [this] { request.speed = 1e-9; });
    row("fps 0", "Invalid export frame rate", [this] { request.fps = 0; });
    row("no output", "No output file given", [this] { request.outputPath.clear(); });
    row("encoder cannot start", "Failed to create encoder", [this] { encoder->isValid = false; });
    row("encoder fails at once", "Failed to encode frame 0", [this] { encoder->failAtFrame = 0; });
    row("encoder fails at frame 100", "Failed to encode frame 100", [this] { encoder->failAtFrame = 100; });
    row("encoder cannot close", "Failed to finish the output file", [this] { encoder->closeFails = true; });
    row("no file", "Output file does not exist:", [this] { encoder->output = QByteArray(); });
    row("empty file", "Output file is empty:", [this] { encoder->output = ""; });
    row("empty GIF", "Output file is empty:", [this] {
        encoder->output = "";
        setFormat(1);
    });
    row("name of another format", "The suffix of", [this] { request.outputPath = outputDir->filePath("out.wav"); });
#ifdef Q_OS_UNIX // Windows keeps a folder with open files
    row("output directory is removed", "Failed to finish the output file",
        [this] { encoder->onFrame = [this](int) { outputDir->remove(); }; });
#endif
    row("a directory takes the place of the output", "Failed to copy video file to output path", [this] {
        encoder->onFrame = [this](int) {
            QFile::remove(request.outputPath);
            QDir().mkdir(request.outputPath);
        };
    });
}

void ExportPipelineTest::failures()
{
    QFETCH(SetUp, setUp);
    QFETCH(QString, text);

    writeFile(request.outputPath, "old");
    const QString outputPath = request.outputPath;
    setUp();
    manager->seek(33);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^" + text));
    QVERIFY(!runExport());
    QVERIFY2(error.startsWith(text), qPrintable(error));
    const bool hasStarted =
        QRegularExpression("^(Failed to (encode|finish|copy)|Output file (does|is))").match(text).hasMatch();
    QCOMPARE(failure == KelExportPipeline::Failure::Start, !hasStarted);
    QCOMPARE(manager->currentFrame(), manager->isValidRecording() ? 33 : 0);
    QVERIFY(!engine().isExporting());
    QVERIFY(!monitor.reports.contains(100));
    QVERIFY(isTidy());
    request.outputPath = outputPath;
    if (QFileInfo(outputPath).isFile())
        QCOMPARE(output(), QByteArray("old"));
}

void ExportPipelineTest::unsupportedFormat()
{
    request.format = 4;
    QTest::ignoreMessage(QtWarningMsg, "Unsupported export format 4");
    QTest::ignoreMessage(QtWarningMsg, "Failed to create encoder");
    QVERIFY(!runExport(KelExportDependencies::real()));
    QCOMPARE(error, QString("Failed to create encoder"));
    QVERIFY(!QFile::exists(request.outputPath));
}

void ExportPipelineTest::cancel_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("frames"); ///< passed to the encoder until then
    QTest::addColumn<SetUp>("setUp");

    const auto row = [](const QByteArray &name, int frames, const SetUp &setUp) {
        QTest::newRow("MP4, " + name) << 0 << frames << setUp;
        QTest::newRow("GIF, " + name) << 1 << frames << setUp;
    };
    row("before the start", 0, [this] { monitor.cancelAtQuestion = 1; });
    row("before the first frame", 0, [this] { monitor.cancelAtQuestion = 2; });
    row("in the middle", 126, [this] { monitor.cancelFromPercent = 45; });
    row("while a frame is decoded", 100, [this] {
        decoder->hangsAtFrame = 100;
        monitor.cancelWhen = [this] { return decoder->isHanging && encoder->frames.size() == 100; };
    });
    row("of a newly loaded recording", 100, [this] {
        loadManager();
        decoder->hangsAtFrame = 100;
        monitor.cancelWhen = [this] { return decoder->isHanging && encoder->frames.size() == 100; };
    });
    row("while the encoder's queue is full", 50, [this] {
        encoder->fullFromFrame = 50;
        monitor.cancelWhen = [this] { return encoder->frames.size() == 50; };
    });
    row("after the last frame", 250, [this] { monitor.cancelFromPercent = 90; });
    row("while the encoder closes", 250, [this] {
        encoder->hangsInClose = true;
        monitor.cancelWhen = [this] { return encoder->isClosing.load(); };
    });
    QTest::newRow("MP4, before the file is moved") << 0 << 250 << SetUp([this] { monitor.cancelFromPercent = 95; });
}

void ExportPipelineTest::cancel()
{
    QFETCH(int, format);
    QFETCH(int, frames);
    QFETCH(SetUp, setUp);

    setFormat(format);
    writeFile(request.outputPath, "old");
    setUp();
    const int frame = manager->currentFrame();
    QVERIFY(!runExport());
    QVERIFY2(error.isEmpty(), qPrintable(error));
    QCOMPARE(encoder->frames.size(), frames);
    QCOMPARE(manager->currentFrame(), frame);
    QVERIFY(!monitor.reports.contains(100));
    QVERIFY(encoder->aborted || encoder->isClosing || frames == 0);
    const bool hasVideo = monitor.reports.contains(95);
    QCOMPARE(engine().isExporting(), !encoder->path.isEmpty() && !hasVideo); // as long as there is an encoder
    QVERIFY(isTidy());
    QCOMPARE(output(), QByteArray("old"));
    decoder->release();
}

void ExportPipelineTest::paintsUnchangedFramesOnce()
{
    recording->frames(250, 25, [](int i) { return i / 10; });
    loadManager();
    decoder->decoded.clear();
    manager->seek(33);
    QVERIFY2(runExport(), qPrintable(error));
    QCOMPARE(encoder->images, 25);
    QCOMPARE(encoder->frames.size(), 250);
    for (int i = 0; i < 250; ++i)
        QCOMPARE(encoder->frames[i], i / 10);
    QCOMPARE(decoder->decoded.size(), 25); // including the return to frame 33
}

void ExportPipelineTest::warnsAboutFailedFrames()
{
    for (int frame = 120; frame < 250; ++frame)
        decoder->failures[frame] = 100;
    QVERIFY2(runExport(), qPrintable(error));
    QCOMPARE(encoder->frames.size(), 250);
    QCOMPARE(encoder->frames.last(), 119);
    QVERIFY2(warning.contains("130 frames"), qPrintable(warning));
    QCOMPARE(output(), QByteArray("encoded"));
}

void ExportPipelineTest::recordingClosedDuringExport()
{
    encoder->onFrame = [this](int frame) {
        if (frame == 20)
            manager.reset();
    };
    QTest::ignoreMessage(QtWarningMsg, "The recording was closed during the export");
    QVERIFY(!runExport());
    QCOMPARE(error, QString("The recording was closed during the export"));
    QCOMPARE(encoder->frames.size(), 21);
    QVERIFY(isTidy());
}

void ExportPipelineTest::monitorThrows()
{
    monitor.throwAtPercent = 50;
    QTest::ignoreMessage(QtWarningMsg, "An error occurred during export: out of paper");
    QVERIFY(!runExport());
    QCOMPARE(error, QString("An error occurred during export: out of paper"));
    QCOMPARE(manager->currentFrame(), 33);
    QVERIFY(isTidy());
}

QTEST_MAIN(ExportPipelineTest)
#include "tst_export_pipeline.moc"
