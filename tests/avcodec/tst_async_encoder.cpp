#include "avcodec/AnimationSample.h"
#include "avcodec/BoundedWorker.h"
#include "avcodec/DecodedVideo.h"
#include "avcodec/mp4/KelAsyncEncoder.h"
#include "support/TestTable.h"

#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

#include <future>
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
    void encodesSmallChanges();
    void addFrameDoesNotBlock();
    void queueIsBounded();
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
    KelAsyncEncoder encoder({size, QImage::Format_ARGB32_Premultiplied, path(), 24, 100});
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
    QCOMPARE(video.fps, 24.0);
    QCOMPARE(video.containerColorSpace, AVCOL_SPC_RGB);
    for (int i = 0; i < kCount; ++i) {
        QCOMPARE(video.times[std::size_t(i)], qint64(i));
        const double db = psnr(video.rgbImage(i), textImage(size, i));
        QVERIFY2(db >= 45, qPrintable(QString("frame %1: %2 dB").arg(i).arg(db)));
        QCOMPARE(bool(video.keyframes[std::size_t(i)]), i % 10 == 0);
    }
}

void AsyncEncoderTest::encodesAnyImage_data()
{
    const TestTable<QSize, QImage::Format> row("size", "format");
    row("one pixel", QSize(1, 1), QImage::Format_RGB32);
    row("odd size", QSize(33, 17), QImage::Format_ARGB32_Premultiplied);
    row("straight alpha", QSize(64, 48), QImage::Format_ARGB32);
    row("24 bits, lines padded", QSize(101, 50), QImage::Format_RGB888);
    row("very wide", QSize(5000, 2), QImage::Format_RGB32);
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

/// Only unchanged macroblocks may be skipped, also when buffers of earlier frames are reused.
void AsyncEncoderTest::encodesSmallChanges()
{
    const QSize size(203, 119);
    for (const int threads : {1, 3}) {
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
        for (std::size_t i = 0; i < images.size(); ++i) {
            QVERIFY2(psnr(video.rgbImage(int(i)), images[i]) >= 45, qPrintable(QString::number(i)));
            QCOMPARE(bool(video.keyframes[i]), i % 30 == 0);
        }
    }
}

/// As many frames as the queue holds are accepted at once; what a busy encoder refuses is missing, nothing else.
void AsyncEncoderTest::addFrameDoesNotBlock()
{
    const QSize size(1280, 720);
    KelAsyncEncoder::Params params{size, QImage::Format_ARGB32_Premultiplied, path()};
    params.queueCapacity = 6;
    KelAsyncEncoder encoder(params);
    const QImage images[] = {noise(size, 0), noise(size, 1)};
    int accepted = 0;
    while (accepted < 1000 && encoder.addFrame(accepted, images[accepted % 2]) == accepted)
        ++accepted;
    QVERIFY(encoder.isBusy());
    QVERIFY2(accepted >= params.queueCapacity, qPrintable(QString::number(accepted)));
    encoder.waitForClosed();
    encoder.waitForClosed();
    QCOMPARE(encoder.addFrame(accepted, images[0]), kNotAccepted);
    QCOMPARE(DecodedVideo(path()).statedFrames, qint64(accepted));
}

/// The item being handled counts.
void AsyncEncoderTest::queueIsBounded()
{
    std::promise<void> mayHandle;
    int handled = 0;
    av::BoundedWorker<int> worker(3, [&, gate = mayHandle.get_future().share()](int &) {
        gate.wait();
        ++handled;
        return true;
    });
    constexpr std::chrono::milliseconds kAtOnce(0);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(!worker.isFull() && worker.waitForRoom(kAtOnce));
        QVERIFY(worker.push(i, kAtOnce));
    }
    QVERIFY(worker.isFull() && !worker.waitForRoom(kAtOnce) && !worker.push(3, kAtOnce));
    mayHandle.set_value();
    QVERIFY(worker.waitForRoom(std::chrono::minutes(1)));
    worker.finish();
    QCOMPARE(handled, 3);
    QVERIFY(!worker.push(4, kAtOnce));
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
    const TestTable<QSize, QString, int> row("size", "file", "fps");
    row("no such directory", QSize(64, 64), path("missing/video.mp4"), 30);
    row("a directory", QSize(64, 64), m_dir.path(), 30);
    row("empty", QSize(0, 64), path(), 30);
    row("too large", QSize(64, 16385), path(), 30);
    row("too large to be decoded", QSize(16380, 16132), path(), 30);
    row("no rate", QSize(64, 64), path(), 0);
    row("full disk", QSize(64, 64), "/dev/full", 30);
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
