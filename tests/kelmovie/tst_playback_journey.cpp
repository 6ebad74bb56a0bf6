#include "RecordingFixture.h"

#include "avcodec/KelAsyncEncoder.h"

#include <KelMovie/KelExportPipeline.h>
#include <KelMovie/KelPlaybackTrackManager.h>

#include <QPainter>
#include <QProcess>
#include <QtTest>

#include <webp/demux.h>

/// From a recorded video to the screen and to every kind of exported file, with the real codecs.
class PlaybackJourneyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void paints();
    void exports_data();
    void exports();
    void recordingOfADeadProcess();

private:
    static constexpr int kVideoFrames = 12;
    static constexpr int kLogicFrames = 40;
    static constexpr int kFps = 20;
    static constexpr int kSide = 96;

    /// The picture of a video frame: its own colour with a black square at its own place.
    static QImage picture(int videoFrame)
    {
        QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
        image.fill(QColor::fromHsv(videoFrame * 30, 120, 220));
        QPainter(&image).fillRect(videoFrame * 8, 40, 16, 16, Qt::black);
        return image;
    }
    static int videoFrameAt(int logicFrame) { return qBound(0, logicFrame / 3 - 1, kVideoFrames - 1); }

    /// Which video frame `image` shows, -1 when none.
    static int recognise(const QImage &image)
    {
        for (int frame = 0; frame < kVideoFrames; ++frame) {
            const QImage wanted = picture(frame);
            bool same = image.size() == wanted.size();
            for (int x = 4; same && x < kSide; x += 8) {
                const QColor a = image.pixelColor(x, 48);
                const QColor b = wanted.pixelColor(x, 48);
                same = a.alpha() == 255 && qAbs(a.red() - b.red()) < 16 && qAbs(a.green() - b.green()) < 16 &&
                       qAbs(a.blue() - b.blue()) < 16;
            }
            if (same)
                return frame;
        }
        return -1;
    }
    static QVector<int> recognise(const QVector<QImage> &images)
    {
        QVector<int> frames;
        for (const QImage &image : images)
            frames.append(recognise(image));
        return frames;
    }

    static QVector<QImage> readWithFFmpeg(const QString &path, const QString &demuxer)
    {
        QProcess ffmpeg;
        ffmpeg.start("ffmpeg", {"-v", "error", "-f", demuxer, "-i", path, "-vf", QString("fps=%1").arg(kFps), "-f",
                                "rawvideo", "-pix_fmt", "rgba", "-"});
        if (!ffmpeg.waitForFinished(60'000))
            return {};
        const QByteArray pixels = ffmpeg.readAllStandardOutput();
        const int size = kSide * kSide * 4;
        QVector<QImage> images;
        for (int offset = 0; offset + size <= pixels.size(); offset += size) {
            const auto *data = reinterpret_cast<const uchar *>(pixels.constData()) + offset;
            images.append(QImage(data, kSide, kSide, QImage::Format_RGBA8888).copy());
        }
        return images;
    }

    static QVector<QImage> readWebP(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return {};
        const QByteArray bytes = file.readAll();
        const WebPData data{reinterpret_cast<const uint8_t *>(bytes.constData()), size_t(bytes.size())};
        const std::unique_ptr<WebPAnimDecoder, decltype(&WebPAnimDecoderDelete)> decoder(
            WebPAnimDecoderNew(&data, nullptr), &WebPAnimDecoderDelete);
        QVector<QImage> images;
        uint8_t *pixels = nullptr;
        int endMs = 0;
        while (decoder && WebPAnimDecoderGetNext(decoder.get(), &pixels, &endMs)) {
            const QImage image = QImage(pixels, kSide, kSide, QImage::Format_RGBA8888).copy();
            while (images.size() * 1000 / kFps < endMs) // a picture that stands still is stored once
                images.append(image);
        }
        return images;
    }

    RecordingFixture recording{kLogicFrames, kFps};
    QTemporaryDir outputDir;
};

void PlaybackJourneyTest::initTestCase()
{
    recording.metadata.recordArea = QRect(10, 20, kSide, kSide);
    recording.save();
    recording.writeIndexes(kLogicFrames, [](int i) { return i < 3 ? -1 : videoFrameAt(i); });
    KelAsyncEncoder::Params params;
    params.frameSize = QSize(kSide, kSide);
    params.path = recording.screenDir() + "/screen_record.mp4";
    KelAsyncEncoder encoder(params);
    for (int i = 0; i < kVideoFrames; ++i) {
        QTRY_VERIFY(!encoder.isBusy());
        QCOMPARE(encoder.addFrame(i, picture(i)), i);
    }
    encoder.waitForClosed();
    QCOMPARE(encoder.errorString(), QString());
}

void PlaybackJourneyTest::paints()
{
    KelPlaybackTrackManager manager(recording.path(), true);
    QVERIFY2(manager.isValidRecording(), qPrintable(manager.errorString()));
    QCOMPARE(manager.totalFrames(), kLogicFrames);
    QCOMPARE(manager.videoFrameCount(), kVideoFrames);
    for (int frame : {0, 39, 2, 20, 21, 3, 0}) {
        manager.seek(frame);
        QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        manager.paint(&painter);
        QCOMPARE(recognise(image), videoFrameAt(frame));
    }
}

void PlaybackJourneyTest::exports_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("demuxer");

    QTest::newRow("MP4") << 0 << "mp4";
    QTest::newRow("GIF") << 1 << "gif";
    QTest::newRow("APNG") << 2 << "apng";
    QTest::newRow("WebP") << 3 << "";
}

void PlaybackJourneyTest::exports()
{
    QFETCH(int, format);
    QFETCH(QString, demuxer);

    KelPlaybackTrackManager manager(recording.path(), false);
    KelExportRequest request;
    request.format = format;
    request.fps = kFps;
    request.outputPath = outputDir.filePath("out");
    request.playbackManager = &manager;
    request.trimStartMs = 0;
    request.trimEndMs = 2000;
    KelExportPipeline pipeline(request);
    QVERIFY2(pipeline.run(), qPrintable(pipeline.errorString()));

    QVector<int> expected;
    for (int i = 0; i < kLogicFrames; ++i)
        expected.append(videoFrameAt(i));
    QCOMPARE(recognise(demuxer.isEmpty() ? readWebP(request.outputPath) : readWithFFmpeg(request.outputPath, demuxer)),
             expected);
}

void PlaybackJourneyTest::recordingOfADeadProcess()
{
    // The last video frames never got into the table, and the metadata was never written.
    RecordingFixture dead;
    dead.remove("TrackManager.meta");
    dead.remove("Screen/screen_record.mp4");
    QVERIFY(QFile::copy(recording.screenDir() + "/screen_record.mp4", dead.screenDir() + "/screen_record.mp4"));
    dead.writeIndexes(25, [](int i) { return i / 3; });
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Cannot open manager metadata:"));
    KelPlaybackTrackManager manager(dead.path(), false);
    QCOMPARE(manager.totalFrames(), 25);
    KelExportRequest request;
    request.fps = kFps;
    request.outputPath = outputDir.filePath("rescued.mp4");
    request.playbackManager = &manager;
    KelExportPipeline pipeline(request);
    QVERIFY2(pipeline.run(), qPrintable(pipeline.errorString()));
    const QVector<int> frames = recognise(readWithFFmpeg(request.outputPath, "mp4"));
    QCOMPARE(frames.size(), kFps);
    QCOMPARE(frames.last(), 8);
    QVERIFY(!frames.contains(-1));
}

QTEST_MAIN(PlaybackJourneyTest)
#include "tst_playback_journey.moc"
