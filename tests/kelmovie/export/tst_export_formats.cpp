#include "avcodec/DecodedAnimation.h"
#include "avcodec/DecodedVideo.h"
#include "kelmovie/support/ExportScene.h"
#include "kelmovie/support/ScriptedDecoder.h"
#include "playback/PlaybackEngine.h"
#include "playback/PlaybackInternals.h"
#include "support/FileSizeLimit.h"

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
constexpr double kLossless = 99; // as psnr() returns it

/// The PSNR of the luma of a video frame, with the coefficients of HDTV.
double lumaPsnr(const DecodedVideo &video, int frame, const QImage &wanted)
{
    double squares = 0;
    for (int y = 0; y < wanted.height(); ++y) {
        for (int x = 0; x < wanted.width(); ++x) {
            const QRgb pixel = wanted.pixel(x, y);
            const double luma =
                16 + 219 * (0.2126 * qRed(pixel) + 0.7152 * qGreen(pixel) + 0.0722 * qBlue(pixel)) / 255;
            squares += std::pow(luma - video.sample(frame, 0, x, y), 2);
        }
    }
    const double mean = squares / (wanted.width() * wanted.height());
    return mean > 0 ? 10 * std::log10(255 * 255 / mean) : kLossless;
}

} // namespace

/// Exports with the real encoders, and reads the files with other libraries.
class ExportFormatsTest : public QObject
{
    Q_OBJECT

private slots:
    void showsRecordedFrames();
    void recordingOfKilledProcess();
    void matchesComposedFrames_data();
    void matchesComposedFrames();
    void frameAsPlayed();
    void hasDurationOfRange_data();
    void hasDurationOfRange();
    void sizes_data();
    void sizes();
    void higherQualityIsLarger_data();
    void higherQualityIsLarger();
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

void ExportFormatsTest::showsRecordedFrames()
{
    KelPlaybackTrackManager manager(scene.path(), true);
    QVERIFY2(manager.isValidRecording(), qPrintable(manager.errorString()));
    QCOMPARE(manager.totalFrames(), int(ExportScene::LogicFrames));
    QCOMPARE(manager.videoFrameCount(), int(ExportScene::VideoFrames));
    for (int frame : {0, 39, 2, 20, 21, 3, 0}) {
        manager.seek(frame);
        const QColor seen = composed(manager).pixel(90, 5);
        const QColor wanted = ExportScene::image(ExportScene::videoFrameAt(frame)).pixel(90, 5);
        QVERIFY2(std::abs(seen.hue() - wanted.hue()) < 10, qPrintable(seen.name() + ' ' + wanted.name()));
    }
}

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
    QVERIFY(lumaPsnr(video, ExportScene::Fps - 1, ExportScene::image(8)) > 35);
}

void ExportFormatsTest::matchesComposedFrames_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<double>("psnrDb");

    QTest::newRow("MP4") << 0 << 40.0;
    QTest::newRow("GIF") << 1 << 40.0;
    QTest::newRow("APNG") << 2 << 99.0;
    QTest::newRow("WebP") << 3 << 99.0;
}

/// Frames that were neither painted nor encoded again had really not changed.
void ExportFormatsTest::matchesComposedFrames()
{
    QFETCH(int, format);
    QFETCH(double, psnrDb);

    KelPlaybackTrackManager manager(scene.path(), false);
    manager.seek(30); // where keys are visible and effects start
    KelExportRequest request;
    request.format = format;
    request.fps = ExportScene::Fps;
    request.quality = 100;
    request.playbackManager = &manager;
    QVERIFY2(runExport(request), qPrintable(error));
    QCOMPARE(error, QString());

    const DecodedAnimation animation(format == kMp4 ? QString() : path(format));
    const DecodedVideo video(format == kMp4 ? path(format) : QString());
    QCOMPARE(format == kMp4 ? video.errorString : animation.errorString, QString());
    KelPlaybackTrackManager reference(scene.path(), false);
    QSet<QByteArray> images;
    for (int frame = 0; frame < ExportScene::LogicFrames; ++frame) {
        PlaybackInternals::engine(reference).setFrameSilently(frame);
        const QImage wanted = composed(reference);
        images.insert(QByteArray(reinterpret_cast<const char *>(wanted.constBits()), int(wanted.sizeInBytes())));
        const QByteArray position = "frame " + QByteArray::number(frame);
        if (format == kMp4)
            QVERIFY2(lumaPsnr(video, frame, wanted) >= psnrDb, position);
        else if (format == kGif)
            QVERIFY2(psnr(animation.at((frame + 0.5) * 1000 / ExportScene::Fps), wanted) >= psnrDb, position);
        else
            QVERIFY2(animation.at((frame + 0.5) * 1000 / ExportScene::Fps).convertToFormat(wanted.format()) == wanted,
                     position);
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

void ExportFormatsTest::hasDurationOfRange_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<double>("speed");
    QTest::addColumn<int>("fps");
    QTest::addColumn<int>("loops");

    for (int format = 0; format < kSuffixes.size(); ++format) {
        for (const auto &[from, to] : {std::pair{-1, -1}, {500, 1490}, {700, 700}}) {
            for (double speed : {0.1, 1.0, 16.0}) {
                for (int fps : {7, 25, 60}) {
                    const int loops = fps == 25 ? 3 : 0;
                    QTest::addRow("%s %d-%d at %g, %d fps", qPrintable(kSuffixes[format]), from, to, speed, fps)
                        << format << from << to << speed << fps << loops;
                }
            }
        }
    }
}

void ExportFormatsTest::hasDurationOfRange()
{
    QFETCH(int, format);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(double, speed);
    QFETCH(int, fps);
    QFETCH(int, loops);

    RecordingOnDisk recording;
    recording.frames(50);
    KelPlaybackDependencies dependencies;
    dependencies.nowMs = [] { return 0; };
    const auto script = std::make_shared<DecoderScript>();
    script->frameCount = 50;
    dependencies.decoders = scriptedDecoders(script);
    const auto manager = PlaybackInternals::load(recording.path(), dependencies);
    KelExportRequest request;
    request.format = format;
    request.fps = fps;
    request.speed = speed;
    request.trimStartMs = from;
    request.trimEndMs = to;
    request.loops = loops;
    request.playbackManager = manager.get();
    QVERIFY2(runExport(request), qPrintable(error));

    const double spanMs = from < 0 ? 2000 : to - from;
    const int frames = std::max(int(spanMs / speed * fps / 1000), 1);
    const double lengthMs = frames * 1000.0 / fps;
    if (format == kMp4) {
        const DecodedVideo video(path(format));
        QCOMPARE(video.errorString, QString());
        QCOMPARE(int(video.frames.size()), frames);
        QCOMPARE(video.statedFrames, qint64(frames));
        QVERIFY(frames == 1 || std::fabs(video.fps - fps) < 0.01);
        return;
    }
    const DecodedAnimation animation(path(format));
    QCOMPARE(animation.errorString, QString());
    QVERIFY(int(animation.frames.size()) <= frames);
    // Rounded to the unit of the format; a frame of a GIF lasts at least 20 ms.
    const double shortestMs = format == kGif ? 20 : 0;
    QVERIFY2(std::fabs(animation.totalMs() - std::max(lengthMs, shortestMs)) <= 10.0,
             qPrintable(QString::number(animation.totalMs())));
    if (animation.frames.size() > 1)
        QCOMPARE(animation.plays, loops);
}

void ExportFormatsTest::sizes_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("coded");

    for (int format = 0; format < kSuffixes.size(); ++format) {
        for (const QSize &size : {QSize(1, 1), QSize(33, 17), QSize(300, 41), QSize(0, 0)}) {
            const QSize wanted = size.isEmpty() ? QSize(ExportScene::Side, ExportScene::Side) : size;
            // Videos have even sizes.
            const QSize even((wanted.width() + 1) / 2 * 2, (wanted.height() + 1) / 2 * 2);
            QTest::addRow("%s %dx%d", qPrintable(kSuffixes[format]), size.width(), size.height())
                << format << size << (format == kMp4 ? even : wanted);
        }
    }
}

void ExportFormatsTest::sizes()
{
    QFETCH(int, format);
    QFETCH(QSize, size);
    QFETCH(QSize, coded);

    KelPlaybackTrackManager manager(scene.path(), false);
    KelExportRequest request;
    request.format = format;
    request.quality = 100;
    request.size = size;
    request.trimStartMs = 900;
    request.trimEndMs = 1000;
    request.playbackManager = &manager;
    QVERIFY2(runExport(request), qPrintable(error));
    if (format == kMp4) {
        const DecodedVideo video(path(format));
        QCOMPARE(video.errorString, QString());
        QCOMPARE(QSize(video.frames.at(0)->width, video.frames.at(0)->height), coded);
        return;
    }
    const DecodedAnimation animation(path(format));
    QCOMPARE(animation.errorString, QString());
    QCOMPARE(animation.frames.at(0).size(), coded);
    // Every size shows the same image, with the same mean color.
    const QColor mean =
        animation.frames.at(0).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0);
    manager.seek(17);
    const QColor wanted = composed(manager).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0);
    QVERIFY2(std::abs(mean.red() - wanted.red()) < 30 && std::abs(mean.blue() - wanted.blue()) < 30,
             qPrintable(mean.name() + ' ' + wanted.name()));
}

void ExportFormatsTest::higherQualityIsLarger_data()
{
    QTest::addColumn<int>("format");
    for (int format = 0; format < kSuffixes.size(); ++format)
        QTest::newRow(qPrintable(kSuffixes[format])) << format;
}

/// Each higher setting increases the quality and the size of a lossy file. A lossless file keeps its content.
void ExportFormatsTest::higherQualityIsLarger()
{
    QFETCH(int, format);

    constexpr int frames = 8;
    RecordingOnDisk recording;
    recording.size(160, 120).frames(frames, ExportScene::Fps).video(frames, [](int i) {
        QImage image = textImage(QSize(160, 120), i);
        QLinearGradient gradient(0, i, 160, 120);
        gradient.setColorAt(0, QColor(20, 60, 250, 120));
        gradient.setColorAt(1, QColor(250, 180, 30, 120));
        QPainter(&image).fillRect(image.rect(), gradient);
        return image;
    });
    KelPlaybackTrackManager manager(recording.path(), false);
    KelExportRequest request;
    request.format = format;
    request.fps = ExportScene::Fps;
    request.playbackManager = &manager;
    const auto restore = qScopeGuard([] { gKelMovieConfig.saveQuality = 1; });
    qint64 bytesBefore = 0;
    double worstBefore = 0;
    for (int setting : {0, 1, 2}) {
        gKelMovieConfig.saveQuality = setting;
        request.quality = KelMovieExportQuality();
        QVERIFY2(runExport(request), qPrintable(error));
        const qint64 bytes = QFileInfo(path(format)).size();
        const DecodedAnimation animation(format == kMp4 ? QString() : path(format));
        const DecodedVideo video(format == kMp4 ? path(format) : QString());
        double worst = kLossless;
        for (int frame = 0; frame < frames; ++frame) {
            PlaybackInternals::engine(manager).setFrameSilently(frame);
            QImage wanted(160, 120, QImage::Format_ARGB32_Premultiplied);
            QPainter painter(&wanted);
            manager.paint(&painter);
            painter.end();
            worst =
                std::min(worst, format == kMp4 ? lumaPsnr(video, frame, wanted)
                                               : psnr(animation.at((frame + 0.5) * 1000 / ExportScene::Fps), wanted));
        }
        const QString figures = QString("setting %1: %2 bytes, %3 dB").arg(setting).arg(bytes).arg(worst);
        if (format == kApng)
            QVERIFY2(worst == kLossless && (setting != 1 || bytes >= bytesBefore), qPrintable(figures));
        else
            QVERIFY2(worst > worstBefore && bytes > bytesBefore, qPrintable(figures));
        QVERIFY2(format != kMp4 || setting == 0 || worst >= 42, qPrintable(figures));
        bytesBefore = bytes;
        worstBefore = worst;
    }
}

void ExportFormatsTest::keepsFirstPartOfAnimation()
{
    KelPlaybackTrackManager manager(scene.path(), false);
    manager.seek(7);
    KelExportRequest request;
    request.format = kGif;
    request.playbackManager = &manager;
    QFile::remove(path(kGif));
    QVERIFY(runExport(request));
    const qint64 whole = QFileInfo(path(kGif)).size();
    QVERIFY(QFile::remove(path(kGif)));
    const FileSizeLimit full(quint64(whole / 2));
    QVERIFY(!runExport(request));
    QVERIFY2(error.contains("frames are in " + outputDir.filePath("out.incomplete.gif")), qPrintable(error));
    QVERIFY(!QFile::exists(path(kGif)));
    const DecodedAnimation animation(outputDir.filePath("out.incomplete.gif"));
    QCOMPARE(animation.errorString, QString());
    QVERIFY(animation.frames.size() > 1 && animation.totalMs() < 3000);
    QCOMPARE(manager.currentFrame(), 7);
    QCOMPARE(QDir(outputDir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot).filter("gif"),
             QStringList{"out.incomplete.gif"});
}

QTEST_MAIN(ExportFormatsTest)
#include "tst_export_formats.moc"
