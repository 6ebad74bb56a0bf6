#include "avcodec/DecodedAnimation.h"
#include "avcodec/DecodedVideo.h"
#include "kelmovie/support/ExportScene.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "support/FileSizeLimit.h"
#include "support/TestTable.h"

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QtTest>

#include <cmath>

using namespace kel;

namespace
{

const QStringList kSuffixes{"mp4", "gif", "apng", "webp"};
constexpr int kMp4 = 0;
constexpr int kGif = 1;
constexpr int kApng = 2;
constexpr int kWebP = 3;

} // namespace

/// Exports with the real encoders, and reads the files with other libraries.
class ExportFormatsTest : public QObject
{
    Q_OBJECT

private slots:
    void recordingOfKilledProcess();
    void matchesComposedFrames_data();
    void matchesComposedFrames();
    void frameAsPlayed();
    void hasTheRequestedLengthAndSize_data();
    void hasTheRequestedLengthAndSize();
    void keepsFirstPartOfAnimation();

private:
    bool runExport(KelExportRequest request)
    {
        request.outputPath = path(request.format);
        KelExportPipeline pipeline(request);
        const bool isComplete = pipeline.run();
        error = pipeline.errorString() + pipeline.warningString();
        return isComplete;
    }
    static QImage composed(KelPlaybackTrackManager &manager)
    {
        QImage image(ExportScene::Side, ExportScene::Side, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::black);
        QPainter painter(&image);
        manager.paint(&painter);
        return image;
    }
    QString path(int format) const { return outputDir.filePath("out." + kSuffixes[format]); }

    const ExportScene scene;
    const QTemporaryDir outputDir;
    QString error;
};

void ExportFormatsTest::recordingOfKilledProcess()
{
    // The last video frames are missing in the index table, and the metadata was never written.
    RecordingOnDisk dead;
    dead.frames(25, 25, [](int i) { return i / 3; })
        .file("Screen/screen_record.mp4", readFile(scene.videoPath()))
        .without("TrackManager.meta");
    gKelMovieConfig.playbackProgressEnable = false;
    const auto showAgain = qScopeGuard([] { gKelMovieConfig.playbackProgressEnable = true; });
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot open manager metadata:"));
    KelPlaybackTrackManager manager(dead.path(), false);
    QCOMPARE(manager.totalFrames(), 25);
    KelExportRequest request;
    request.fps = ExportScene::Fps;
    request.playbackManager = &manager;
    QVERIFY2(runExport(request), qPrintable(error));
    const DecodedVideo video(path(kMp4));
    QCOMPARE(video.errorString, QString());
    QCOMPARE(int(video.frames.size()), int(ExportScene::Fps));
    QVERIFY(video.lumaPsnr(ExportScene::Fps - 1, ExportScene::image(8)) > 35);
}

void ExportFormatsTest::matchesComposedFrames_data()
{
    const TestTable<int, double> row("format", "psnrDb");
    row("MP4", kMp4, 40);
    row("GIF", kGif, 40);
    row("APNG", kApng, kLossless);
    row("WebP", kWebP, kLossless);
}

/// Frames that were neither painted nor encoded again had really not changed. Lower quality takes fewer bytes.
void ExportFormatsTest::matchesComposedFrames()
{
    QFETCH(int, format);
    QFETCH(double, psnrDb);

    KelPlaybackTrackManager manager(scene.path(), false);
    manager.seek(30); // where keys are visible and effects start
    KelExportRequest request;
    request.format = format;
    request.fps = ExportScene::Fps;
    request.quality = 30;
    request.playbackManager = &manager;
    QVERIFY2(runExport(request), qPrintable(error));
    const qint64 bytes = QFileInfo(path(format)).size();
    request.quality = 100;
    QVERIFY2(runExport(request), qPrintable(error));
    QCOMPARE(error, QString());
    QVERIFY(format == kApng || bytes < 0.9 * QFileInfo(path(format)).size());

    const DecodedAnimation animation(format == kMp4 ? QString() : path(format));
    const DecodedVideo video(format == kMp4 ? path(format) : QString());
    QCOMPARE(format == kMp4 ? video.errorString : animation.errorString, QString());
    KelPlaybackTrackManager reference(scene.path(), false);
    QSet<QByteArray> images;
    for (int frame = 0; frame < ExportScene::LogicFrames; ++frame) {
        PlaybackInternals::engine(reference).setFrameSilently(frame);
        const QImage wanted = composed(reference);
        images.insert(QByteArray(reinterpret_cast<const char *>(wanted.constBits()), int(wanted.sizeInBytes())));
        const double found = format == kMp4 ? video.lumaPsnr(frame, wanted)
                                            : psnr(animation.at((frame + 0.5) * 1000 / ExportScene::Fps), wanted);
        QVERIFY2(found >= psnrDb, qPrintable(QString("frame %1: %2 dB").arg(frame).arg(found)));
        // The composed frame itself shows the recorded one.
        const QColor recorded = ExportScene::image(ExportScene::videoFrameAt(frame)).pixel(90, 5);
        QVERIFY(std::abs(QColor(wanted.pixel(90, 5)).hue() - recorded.hue()) < 10);
    }
    // Some frames of the scene are equal, most are not.
    QVERIFY2(images.size() > 20 && images.size() < ExportScene::LogicFrames - 5, QByteArray::number(images.size()));
    if (format != kMp4)
        QVERIFY(int(animation.frames.size()) < ExportScene::LogicFrames);
}

void ExportFormatsTest::frameAsPlayed()
{
    KelPlaybackTrackManager played(scene.path(), false);
    for (int frame = 0; frame <= 15; ++frame)
        PlaybackInternals::engine(played).setFrameSilently(frame);
    KelPlaybackTrackManager jumped(scene.path(), false);
    PlaybackInternals::engine(jumped).setFrameSilently(15);
    const QImage withoutEffect = composed(jumped);
    jumped.setFrameAsPlayed(15);
    QCOMPARE(composed(jumped), composed(played));
    QVERIFY(composed(jumped) != withoutEffect);
}

void ExportFormatsTest::hasTheRequestedLengthAndSize_data()
{
    const TestTable<int, int, int, double, int, int, QSize> row("format", "from", "to", "speed", "fps", "loops",
                                                                "size");
    for (int format = 0; format < kSuffixes.size(); ++format) {
        const QByteArray name = kSuffixes[format].toLatin1();
        row(name + ", all, fast, tiny", format, -1, -1, 16.0, 60, 0, QSize(1, 1));
        row(name + ", a part, slow, odd size", format, 500, 1490, 0.3, 25, 3, QSize(33, 17));
        row(name + ", a single frame, wide", format, 700, 700, 1.0, 7, 1, QSize(300, 41));
        row(name + ", size of the recording", format, 900, 1900, 1.0, 7, 2, QSize());
    }
}

void ExportFormatsTest::hasTheRequestedLengthAndSize()
{
    QFETCH(int, format);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(double, speed);
    QFETCH(int, fps);
    QFETCH(int, loops);
    QFETCH(QSize, size);

    KelPlaybackTrackManager manager(scene.path(), false);
    KelExportRequest request;
    request.format = format;
    request.fps = fps;
    request.quality = 100;
    request.speed = speed;
    request.trimStartMs = from;
    request.trimEndMs = to;
    request.loops = loops;
    request.size = size;
    request.playbackManager = &manager;
    QVERIFY2(runExport(request), qPrintable(error));

    const QSize wanted = size.isEmpty() ? QSize(ExportScene::Side, ExportScene::Side) : size;
    const double spanMs = from < 0 ? 3000 : to - from;
    const int frames = std::max(int(spanMs / speed * fps / 1000), 1);
    if (format == kMp4) {
        const DecodedVideo video(path(format));
        QCOMPARE(video.errorString, QString());
        QCOMPARE(int(video.frames.size()), frames);
        QVERIFY(frames == 1 || std::fabs(video.fps - fps) < 0.01);
        // Videos have even sizes.
        QCOMPARE(QSize(video.frames.at(0)->width, video.frames.at(0)->height),
                 QSize((wanted.width() + 1) / 2 * 2, (wanted.height() + 1) / 2 * 2));
        return;
    }
    const DecodedAnimation animation(path(format));
    QCOMPARE(animation.errorString, QString());
    // Rounded to the unit of the format; a frame of a GIF lasts at least 20 ms.
    QVERIFY2(std::fabs(animation.totalMs() - std::max(frames * 1000.0 / fps, 20.0)) <= 10.0,
             qPrintable(QString::number(animation.totalMs())));
    if (animation.frames.size() > 1)
        QCOMPARE(animation.plays, loops);
    QCOMPARE(animation.frames.at(0).size(), wanted);
    // Every size shows the same image, with the same mean color.
    const auto mean = [](const QImage &image) {
        return QColor(image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0));
    };
    PlaybackInternals::engine(manager).setFrameSilently(from < 0 ? 0 : from * (ExportScene::LogicFrames - 1) / 3000);
    const QColor found = mean(animation.frames.at(0));
    const QColor expected = mean(composed(manager));
    QVERIFY2(std::abs(found.red() - expected.red()) < 20 && std::abs(found.blue() - expected.blue()) < 20,
             qPrintable(found.name() + ' ' + expected.name()));
}

void ExportFormatsTest::keepsFirstPartOfAnimation()
{
    KelPlaybackTrackManager manager(scene.path(), false);
    manager.seek(7);
    KelExportRequest request;
    request.format = kGif;
    request.playbackManager = &manager;
    QVERIFY(runExport(request));
    const qint64 whole = QFileInfo(path(kGif)).size();
    QVERIFY(QFile::remove(path(kGif)));
    const FileSizeLimit full(quint64(whole / 2));
    QVERIFY(!runExport(request));
    QVERIFY2(error.contains("frames are in " + outputDir.filePath("out.incomplete.gif")), qPrintable(error));
    const DecodedAnimation animation(outputDir.filePath("out.incomplete.gif"));
    QCOMPARE(animation.errorString, QString());
    QVERIFY(animation.frames.size() > 1 && animation.totalMs() < 3000);
    QCOMPARE(manager.currentFrame(), 7);
    QCOMPARE(QDir(outputDir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).filter("gif"),
             QStringList{"out.incomplete.gif"});
}

QTEST_MAIN(ExportFormatsTest)
#include "tst_export_formats.moc"
