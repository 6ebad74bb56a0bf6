#include "avcodec/DecodedVideo.h"
#include "avcodec/mp4/h264Encoder.h"
#include "avcodec/x264/PixelConversion.h"
#include "support/TestTable.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <random>
#include <thread>

using namespace av;

namespace
{

constexpr int kFormat = QImage::Format_ARGB32_Premultiplied;

} // namespace

class H264EncoderTest : public QObject
{
    Q_OBJECT

private slots:
    void convertsExactly();
    void writesExactColors();
    void statesItsProperties();
    void hasTheDocumentedQuality();
    void repeatsFrames();
    void hasKeyframesEveryFewSeconds();
    void canBeAbortedDuringClose();
    void rejectsInvalidParameters_data();
    void rejectsInvalidParameters();
    void rejectsFramesOutOfOrder();

private:
    QString path() const { return m_dir.filePath("video.mp4"); }

    QTemporaryDir m_dir;
};

void H264EncoderTest::convertsExactly()
{
    std::mt19937 random(7);
    double worst = 0;
    for (int i = 0; i < 20000; ++i) {
        const auto gray = uint32_t(i % 256) * 0x010101;
        const uint32_t pixel = i < 256 ? gray : uint32_t(random());
        const uint32_t line[2] = {pixel, pixel};
        uint8_t luma[4];
        uint8_t cb = 0;
        uint8_t cr = 0;
        pixels::toYuv420(line, line, luma, luma + 2, &cb, &cr, 2);
        const Yuv exact = Yuv::of(pixel);
        if (i < 256)
            QVERIFY(cb == 128 && cr == 128);
        for (const double error : {luma[0] - exact.y, luma[3] - exact.y, cb - exact.cb, cr - exact.cr})
            worst = std::max(worst, std::abs(error));
    }
    QVERIFY2(worst < 0.52, qPrintable(QString::number(worst))); // rounding alone is 0.5
    // A chroma sample is the mean of four pixels.
    const uint32_t upper[2] = {0xff0000, 0x000000};
    const uint32_t lower[2] = {0x0000ff, 0x00ff00};
    uint8_t luma[4];
    uint8_t cb = 0;
    uint8_t cr = 0;
    pixels::toYuv420(upper, lower, luma, luma + 2, &cb, &cr, 2);
    const Yuv mean[] = {Yuv::of(upper[0]), Yuv::of(upper[1]), Yuv::of(lower[0]), Yuv::of(lower[1])};
    QVERIFY(std::abs((mean[0].cb + mean[1].cb + mean[2].cb + mean[3].cb) / 4 - cb) < 0.52);
    QVERIFY(std::abs((mean[0].cr + mean[1].cr + mean[2].cr + mean[3].cr) / 4 - cr) < 0.52);
    QVERIFY(std::abs(mean[2].y - luma[2]) < 0.52);
}

/// Odd sizes are padded by repeating the last column and line.
void H264EncoderTest::writesExactColors()
{
    const QRgb colors[] = {0xffffffff, 0xff000000, 0xffff0000, 0xff00ff00, 0xff0000ff, 0xff808080, 0xffc87800};
    constexpr int kPatch = 32;
    const QSize size(7 * kPatch - 1, kPatch - 1);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, colors[x / kPatch]);
    h264Encoder encoder({size, kFormat, path(), 25, 100});
    QVERIFY(encoder.addFrame(0, image));
    QVERIFY(encoder.addFrame(1, image.convertToFormat(QImage::Format_RGB888)));
    QVERIFY(encoder.close());
    const DecodedVideo video(path());
    QCOMPARE(video.frames.size(), std::size_t(2));
    for (int frame = 0; frame < 2; ++frame) {
        QCOMPARE(video.frames[std::size_t(frame)]->width, 7 * kPatch);
        QCOMPARE(video.frames[std::size_t(frame)]->height, kPatch);
        for (int i = 0; i < 7; ++i) {
            const Yuv exact = Yuv::of(colors[i]);
            for (const int inside : {kPatch / 2, kPatch - 1}) {
                const int x = i * kPatch + inside;
                QVERIFY(std::abs(video.sample(frame, 0, x, inside) - exact.y) < 1.6);
                QVERIFY(std::abs(video.sample(frame, 1, x / 2, inside / 2) - exact.cb) < 1.6);
                QVERIFY(std::abs(video.sample(frame, 2, x / 2, inside / 2) - exact.cr) < 1.6);
            }
        }
    }
}

void H264EncoderTest::statesItsProperties()
{
    const QSize size(322, 182);
    h264Encoder encoder({size, kFormat, path(), 25, 90});
    QImage image;
    for (int i = 0; i < 80; ++i) {
        image = textImage(size, i / 3 % 9);
        QVERIFY(encoder.addFrame(quint64(i), image));
        image.fill(Qt::red); // must not affect the encoder's copy
    }
    QVERIFY(encoder.close());
    QVERIFY(encoder.close());
    QVERIFY(encoder.isValid());
    QCOMPARE(encoder.framesWritten(), quint64(80));

    const DecodedVideo video(path());
    QCOMPARE(video.errorString, QString());
    QCOMPARE(video.statedFrames, qint64(80));
    QCOMPARE(video.fps, 25.0);
    QCOMPARE(video.containerColorSpace, AVCOL_SPC_BT709);
    QCOMPARE(video.containerColorRange, AVCOL_RANGE_MPEG);
    for (int i = 0; i < 80; ++i) {
        QCOMPARE(video.times[std::size_t(i)], qint64(i));
        QVERIFY2(video.lumaPsnr(i, textImage(size, i / 3 % 9)) >= 40, qPrintable(QString::number(i)));
    }
    const AVFrame *frame = video.frames[0].get();
    QCOMPARE(frame->format, int(AV_PIX_FMT_YUV420P));
    QCOMPARE(frame->colorspace, AVCOL_SPC_BT709);
    QCOMPARE(frame->color_primaries, AVCOL_PRI_BT709);
    QCOMPARE(frame->color_trc, AVCOL_TRC_BT709);
    QCOMPARE(frame->color_range, AVCOL_RANGE_MPEG);
    QCOMPARE(frame->chroma_location, AVCHROMA_LOC_CENTER);
    const QList<QByteArray> boxes = mp4Boxes(path());
    QVERIFY(boxes.indexOf("moov") < boxes.indexOf("mdat"));
    QVERIFY(!boxes.contains("?"));
}

void H264EncoderTest::hasTheDocumentedQuality()
{
    const QSize size(320, 200);
    qint64 lastBytes = 0;
    for (const int quality : {-5, 0, 50, 90, 100, 1000}) {
        h264Encoder encoder({size, kFormat, path(), 30, quality});
        for (quint64 i = 0; i < 10; ++i)
            QVERIFY(encoder.addFrame(i, textImage(size, int(i))));
        QVERIFY(encoder.close());
        const qint64 bytes = QFileInfo(path()).size();
        const bool isClamped = quality == 0 || quality == 1000;
        QVERIFY2(isClamped ? bytes == lastBytes : bytes > lastBytes, qPrintable(QString::number(quality)));
        lastBytes = bytes;
        const double db = DecodedVideo(path()).lumaPsnr(9, textImage(size, 9));
        QVERIFY2(quality < 90 || db >= 42, qPrintable(QString::number(db)));
        QVERIFY2(quality < 100 || db >= 45, qPrintable(QString::number(db)));
    }
}

void H264EncoderTest::repeatsFrames()
{
    const QSize size(320, 200);
    const quint64 starts[] = {0, 1, 40, 41};
    h264Encoder encoder({size, kFormat, path(), 30, 90});
    QVERIFY(!encoder.repeatLastFrameUntil(5));
    for (int image = 0; image < 4; ++image)
        QVERIFY(encoder.addFrame(starts[image], textImage(size, image)));
    QVERIFY(encoder.repeatLastFrameUntil(60));
    QVERIFY(encoder.repeatLastFrameUntil(90));
    QVERIFY(encoder.close());
    QCOMPARE(encoder.framesWritten(), quint64(90));
    const DecodedVideo video(path());
    QCOMPARE(video.statedFrames, qint64(90));
    for (int frame = 0; frame < 90; ++frame) {
        QCOMPARE(video.times[std::size_t(frame)], qint64(frame));
        const auto shown = std::upper_bound(std::begin(starts), std::end(starts), quint64(frame)) - starts - 1;
        QVERIFY2(video.lumaPsnr(frame, textImage(size, int(shown))) >= 42, qPrintable(QString::number(frame)));
    }

    h264Encoder withoutRepetitions({size, kFormat, path() + ".few", 30, 90});
    for (quint64 frame = 0; frame < 4; ++frame)
        QVERIFY(withoutRepetitions.addFrame(frame, textImage(size, int(frame))));
    QVERIFY(withoutRepetitions.close());
    const qint64 repetitions = QFileInfo(path()).size() - QFileInfo(path() + ".few").size();
    QVERIFY2(repetitions < QFileInfo(path() + ".few").size(), qPrintable(QString::number(repetitions)));
}

/// Whatever does not change, seeking stays fast.
void H264EncoderTest::hasKeyframesEveryFewSeconds()
{
    for (const auto &[fps, distance] : {std::pair(2, 10), {100, 250}}) { // 5 seconds, at most 250 frames
        h264Encoder encoder({QSize(64, 48), kFormat, path(), fps, 90});
        QVERIFY(encoder.addFrame(0, textImage({64, 48}, 0)));
        QVERIFY(encoder.repeatLastFrameUntil(quint64(2 * distance + 1)));
        QVERIFY(encoder.close());
        const DecodedVideo video(path());
        QCOMPARE(int(video.keyframes.size()), 2 * distance + 1);
        for (int i = 0; i <= 2 * distance; ++i)
            QCOMPARE(bool(video.keyframes[std::size_t(i)]), i % distance == 0);
    }
}

void H264EncoderTest::canBeAbortedDuringClose()
{
    const QSize size(1280, 720);
    h264Encoder encoder({size, kFormat, path(), 30, 100});
    const QImage images[] = {textImage(size, 0), textImage(size, 5)};
    for (quint64 i = 0; i < 6; ++i)
        QVERIFY(encoder.addFrame(i, images[i % 2]));
    QTest::ignoreMessage(QtWarningMsg, "[h264Encoder] Aborted");
    std::thread other([&encoder] { encoder.abort(); });
    const bool isClosed = encoder.close();
    other.join();
    QVERIFY(!encoder.isValid());
    QCOMPARE(encoder.errorString(), QString("Aborted"));
    QVERIFY(!encoder.addFrame(6, images[0]));
    QVERIFY(isClosed || !encoder.close());
    QVERIFY(QFile::exists(path()));
}

void H264EncoderTest::rejectsInvalidParameters_data()
{
    const TestTable<QSize, QString, int> row("size", "file", "fps");
    row("no such directory", QSize(64, 64), m_dir.filePath("missing/video.mp4"), 30);
    row("full disk", QSize(64, 64), "/dev/full", 30);
    row("empty", QSize(0, 64), path(), 30);
    row("too large", QSize(16386, 64), path(), 30);
    row("no rate", QSize(64, 64), path(), 0);
}

void H264EncoderTest::rejectsInvalidParameters()
{
    QFETCH(QSize, size);
    QFETCH(QString, file);
    QFETCH(int, fps);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[h264Encoder\\] Cannot "));
    h264Encoder encoder({size, kFormat, file, fps, 90});
    QVERIFY(!encoder.isValid());
    QVERIFY(!encoder.errorString().isEmpty());
    QVERIFY(!encoder.addFrame(0, QImage(size, QImage::Format_RGB32)));
    QVERIFY(!encoder.close());
    encoder.abort();
}

void H264EncoderTest::rejectsFramesOutOfOrder()
{
    const QImage image = textImage({64, 64}, 0);
    h264Encoder encoder({image.size(), kFormat, path(), 30, 90});
    QVERIFY(encoder.addFrame(3, image));
    QTest::ignoreMessage(QtWarningMsg, "[h264Encoder] Frame 3 is out of order");
    QVERIFY(!encoder.addFrame(3, image));
    QVERIFY(!encoder.close());
}

QTEST_MAIN(H264EncoderTest)
#include "tst_h264_encoder.moc"
