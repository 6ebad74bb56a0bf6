#include "avcodec/DecodedVideo.h"
#include "avcodec/mp4/KelAsyncEncoder.h"

#include <QGuiApplication>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

#include <random>

namespace
{

constexpr int kNotAccepted = -1;

/// Waits for room in the queue, so that no frame is dropped.
int addWaiting(KelAsyncEncoder &encoder, int index, const QImage &image)
{
    return QTest::qWaitFor([&] { return !encoder.isBusy(); }, 30000) ? encoder.addFrame(index, image) : kNotAccepted;
}

} // namespace

class AsyncEncoderTest : public QObject
{
    Q_OBJECT

private slots:
    void keepsSmallColoredText();
    void encodesAnyImage_data();
    void encodesAnyImage();
    void encodesSmallChanges_data();
    void encodesSmallChanges();
    void addFrameDoesNotBlock();
    void rejectsOtherSizes();
    void reportsOpeningErrors_data();
    void reportsOpeningErrors();
    void deletesAFileWithoutFrames();

private:
    QString path(const QString &name = "video.mp4") const { return m_dir.filePath(name); }

    QTemporaryDir m_dir;
};

void AsyncEncoderTest::keepsSmallColoredText()
{
    constexpr int kCount = 45;
    const QSize size(426, 240);
    KelAsyncEncoder encoder({size, QImage::Format_ARGB32_Premultiplied, path(), 30, 100});
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int i = 0; i < kCount; ++i) {
        image = textImage(size, i);
        QCOMPARE(addWaiting(encoder, i, image), i);
        image.fill(Qt::yellow); // must not affect the encoder's copy
    }
    encoder.waitForClosed();
    QCOMPARE(encoder.errorString(), QString());
    QCOMPARE(mp4Boxes(path()), QList<QByteArray>({"ftyp", "mdat", "moov"}));

    const DecodedVideo video(path());
    QCOMPARE(video.errorString, QString());
    QCOMPARE(video.statedFrames, qint64(kCount));
    QCOMPARE(int(video.frames.size()), kCount);
    QCOMPARE(video.fps, 30.0);
    QCOMPARE(video.containerColorSpace, AVCOL_SPC_RGB);
    for (int i = 0; i < kCount; ++i) {
        QCOMPARE(video.times[std::size_t(i)], qint64(i));
        const double db = psnr(video.rgbImage(i), textImage(size, i));
        QVERIFY2(db >= 45, qPrintable(QString("frame %1: %2 dB").arg(i).arg(db)));
    }
    int sinceKeyframe = 0;
    for (const bool isKeyframe : video.keyframes) {
        sinceKeyframe = isKeyframe ? 0 : sinceKeyframe + 1;
        QVERIFY(sinceKeyframe < 10);
    }
}

void AsyncEncoderTest::encodesAnyImage_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("one pixel") << QSize(1, 1) << QImage::Format_RGB32;
    QTest::newRow("odd size") << QSize(33, 17) << QImage::Format_ARGB32_Premultiplied;
    QTest::newRow("straight alpha") << QSize(64, 48) << QImage::Format_ARGB32;
    QTest::newRow("24 bits, lines padded") << QSize(101, 50) << QImage::Format_RGB888;
    QTest::newRow("very wide") << QSize(5000, 2) << QImage::Format_RGB32;
}

void AsyncEncoderTest::encodesAnyImage()
{
    QFETCH(QSize, size);
    QFETCH(QImage::Format, format);
    QImage image(size, format);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, QColor(x * 7 % 256, y * 11 % 256, 255 - x % 256));
    KelAsyncEncoder encoder({size, format, path()});
    QCOMPARE(encoder.addFrame(0, image), 0);
    encoder.waitForClosed();
    const DecodedVideo video(path());
    QCOMPARE(video.errorString, QString());
    QCOMPARE(video.statedFrames, qint64(1));
    QVERIFY(psnr(video.rgbImage(0), image) >= 45);
}

void AsyncEncoderTest::encodesSmallChanges_data()
{
    QTest::addColumn<int>("threads");
    QTest::newRow("one thread") << 1;
    QTest::newRow("three threads") << 3;
}

/// Only unchanged macroblocks may be skipped, also when buffers of earlier frames are reused.
void AsyncEncoderTest::encodesSmallChanges()
{
    QFETCH(int, threads);
    const QSize size(203, 119);
    std::mt19937 random(1);
    std::vector<QImage> images;
    QImage image = textImage(size, 0);
    KelAsyncEncoder::Params params{size, QImage::Format_ARGB32_Premultiplied, path()};
    params.keyframeInterval = 30;
    params.threads = threads;
    KelAsyncEncoder encoder(params);
    for (int i = 0; i < 60; ++i) {
        QPainter painter(&image);
        const QRect spot(int(random() % 200), int(random() % 116), int(random() % 40), int(random() % 9));
        painter.fillRect(i % 7 == 0 ? QRect() : spot, QColor::fromRgb(random()));
        painter.end();
        images.push_back(image.copy());
        QCOMPARE(addWaiting(encoder, i, image), i);
    }
    encoder.waitForClosed();
    const DecodedVideo video(path());
    QCOMPARE(video.frames.size(), images.size());
    for (std::size_t i = 0; i < images.size(); ++i)
        QVERIFY2(psnr(video.rgbImage(int(i)), images[i]) >= 45, qPrintable(QString::number(i)));
}

void AsyncEncoderTest::addFrameDoesNotBlock()
{
    const QSize size(1280, 720);
    KelAsyncEncoder::Params params{size, QImage::Format_ARGB32_Premultiplied, path()};
    params.queueCapacity = 1;
    KelAsyncEncoder encoder(params);
    const QImage images[] = {textImage(size, 0), textImage(size, 9)};
    int accepted = 0;
    int rejected = 0;
    while (rejected == 0 || accepted < 5) {
        const int number = encoder.addFrame(accepted, images[accepted % 2]);
        if (number == kNotAccepted)
            ++rejected;
        else
            QCOMPARE(number, accepted++);
    }
    encoder.waitForClosed();
    encoder.waitForClosed();
    QCOMPARE(encoder.addFrame(accepted, images[0]), kNotAccepted);
    QCOMPARE(DecodedVideo(path()).statedFrames, qint64(accepted));
}

void AsyncEncoderTest::rejectsOtherSizes()
{
    KelAsyncEncoder encoder({QSize(64, 64), QImage::Format_ARGB32_Premultiplied, path()});
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[KelAsyncEncoder\\] Frame 0 "));
    QCOMPARE(encoder.addFrame(0, QImage(64, 65, QImage::Format_RGB32)), kNotAccepted);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^\\[KelAsyncEncoder\\] Frame 0 "));
    QCOMPARE(encoder.addFrame(0, QImage()), kNotAccepted);
    QCOMPARE(encoder.addFrame(0, textImage({64, 64}, 0)), 0);
    encoder.waitForClosed();
    QCOMPARE(DecodedVideo(path()).statedFrames, qint64(1));
}

void AsyncEncoderTest::reportsOpeningErrors_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("fps");
    QTest::newRow("no such directory") << QSize(64, 64) << path("missing/video.mp4") << 30;
    QTest::newRow("a directory") << QSize(64, 64) << m_dir.path() << 30;
    QTest::newRow("empty") << QSize(0, 64) << path() << 30;
    QTest::newRow("too large") << QSize(64, 16385) << path() << 30;
    QTest::newRow("too large to be decoded") << QSize(16380, 16132) << path() << 30;
    QTest::newRow("no rate") << QSize(64, 64) << path() << 0;
    QTest::newRow("full disk") << QSize(64, 64) << "/dev/full" << 30;
}

void AsyncEncoderTest::reportsOpeningErrors()
{
    QFETCH(QSize, size);
    QFETCH(QString, file);
    QFETCH(int, fps);
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^\\[KelAsyncEncoder\\] Cannot "));
    KelAsyncEncoder encoder({size, QImage::Format_ARGB32_Premultiplied, file, fps});
    QVERIFY(!encoder.errorString().isEmpty());
    int reports = 0;
    encoder.setErrorHandler([&](const QString &text) { reports += text == encoder.errorString(); });
    QCOMPARE(reports, 1);
    QVERIFY(encoder.isBusy());
    QCOMPARE(encoder.addFrame(0, QImage(size, QImage::Format_RGB32)), kNotAccepted);
    encoder.waitForClosed();
    QCOMPARE(reports, 1);
}

void AsyncEncoderTest::deletesAFileWithoutFrames()
{
    {
        KelAsyncEncoder encoder({QSize(64, 64), QImage::Format_ARGB32_Premultiplied, path("none.mp4")});
        QVERIFY(QFile::exists(path("none.mp4")));
    }
    QVERIFY(!QFile::exists(path("none.mp4")));
}

QTEST_MAIN(AsyncEncoderTest)
#include "tst_async_encoder.moc"
