// Errors while an animation is written, and what remains of the file.

#include "avcodec/AnimationSample.h"
#include "avcodec/BoundedWorker.h"
#include "avcodec/DecodedAnimation.h"
#include "avcodec/animation/FrameComparer.h"
#include "avcodec/animation/gif/GifFormat.h"
#include "avcodec/animation/png/ApngFormat.h"
#include "avcodec/animation/webp/WebpFormat.h"
#include "support/FileSizeLimit.h"
#include "support/TestTable.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <future>

using namespace av;

namespace
{

const QSize kSize(120, 90);
constexpr int kFps = 25;

/// Adds frames until the encoder fails. Returns how many it has accepted.
int addUntilFailure(KelAVCodecEncoder &encoder)
{
    int frame = 0;
    while (frame < 1000 && encoder.addFrame(quint64(frame), noise(kSize, uint(frame))))
        ++frame;
    return frame;
}

/// Every error is logged once.
void expectWarning(const char *pattern)
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QLatin1String("^\\[AnimationEncoder\\] ") + pattern));
}

} // namespace

class AnimationFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void rejectsInvalidParameters_data();
    void rejectsInvalidParameters();
    void rejectsInvalidFrames_data() { addAnimationFormats(); }
    void rejectsInvalidFrames();
    void failsWhileFramesAreAdded_data() { addAnimationFormats(); }
    void failsWhileFramesAreAdded();
    void keepsCompleteFramesOnFullDisk_data();
    void keepsCompleteFramesOnFullDisk();
    void webpStopsBeforeItsSizeLimit();
    void pngKeepsCompleteFramesWhenRewritingFails_data();
    void pngKeepsCompleteFramesWhenRewritingFails();
    void abortsWithoutEncodingTheQueue_data() { addAnimationFormats(); }
    void abortsWithoutEncodingTheQueue();
    void cancelsAFrameBeingEncoded_data() { addAnimationFormats(); }
    void cancelsAFrameBeingEncoded();
    void abortsWithoutWaitingForDroppedItems();

private:
    QString path(const QString &format) const { return m_dir.filePath("animation." + format); }

    QTemporaryDir m_dir;
};

void AnimationFaultsTest::rejectsInvalidParameters_data()
{
    const TestTable<QString, QSize, QString, int, QString, QString> row("format", "size", "path", "fps", "extra",
                                                                        "error");
    const QString file = path("any");
    row("no size", "gif", QSize(0, 5), file, 25, "", "Invalid frame size: 0x5");
    row("too wide", "webp", QSize(16384, 5), file, 25, "", "Invalid frame size: 16384x5");
    row("too large", "png", QSize(32767, 32767), file, 25, "", "Invalid frame size: 32767x32767");
    row("no rate", "png", kSize, file, 0, "", "Invalid frame rate: 0");
    row("unknown option", "gif", kSize, file, 25, "loops", "Invalid option: loops");
    row("too many plays", "gif", kSize, file, 25, "loop=65536", "Invalid option: loop=65536");
    row("directory", "webp", kSize, m_dir.path(), 25, "", "Cannot create " + m_dir.path());
    const QString nowhere = m_dir.filePath("none/x");
    row("no directory", "png", kSize, nowhere, 25, "", "Cannot create " + nowhere);
}

void AnimationFaultsTest::rejectsInvalidParameters()
{
    QFETCH(QString, format);
    QFETCH(QSize, size);
    QFETCH(QString, path);
    QFETCH(int, fps);
    QFETCH(QString, extra);
    QFETCH(QString, error);
    expectWarning("(Invalid|Cannot create) ");
    const auto encoder = makeAnimationEncoder(format, size, path, fps, 90, extra);
    QVERIFY(!encoder->isValid());
    QVERIFY2(encoder->errorString().startsWith(error), qPrintable(encoder->errorString()));
    QVERIFY(!encoder->addFrame(0, patches(kSize, 0)));
    QVERIFY(!encoder->close());
}

void AnimationFaultsTest::rejectsInvalidFrames()
{
    QFETCH(QString, format);
    const auto encoder = makeAnimationEncoder(format, kSize, path(format), kFps, 90);
    QVERIFY(encoder->addFrame(0, patches(kSize, 0)));
    QVERIFY(encoder->addFrame(1, patches(kSize, 1)));
    expectWarning("Frame ");
    if (format == QLatin1String("gif")) {
        QVERIFY(!encoder->addFrame(2, QImage()));
        QCOMPARE(encoder->errorString(), QString("Frame 2 has 0x0 pixels instead of 120x90"));
    } else {
        QVERIFY(!encoder->addFrame(1, patches(kSize, 2)));
        QCOMPARE(encoder->errorString(), QString("Frame 1 is out of order"));
    }
    QVERIFY(!encoder->addFrame(3, patches(kSize, 3)));
    QVERIFY(!encoder->close());
    QVERIFY(!encoder->close());

    expectWarning("No frames were added");
    QVERIFY(!makeAnimationEncoder(format, kSize, path(format), kFps, 90)->close());
}

void AnimationFaultsTest::failsWhileFramesAreAdded()
{
    QFETCH(QString, format);
    expectWarning("Cannot write ");
    const auto encoder = makeAnimationEncoder(format, kSize, "/dev/full", kFps, 90);
    QVERIFY2(addUntilFailure(*encoder) < 100, "reported only by close()");
    QVERIFY(!encoder->isValid());
    QVERIFY(!encoder->close());
    QVERIFY2(encoder->errorString().contains("No space left"), qPrintable(encoder->errorString()));
    QCOMPARE(encoder->framesWritten(), quint64(0));
}

void AnimationFaultsTest::keepsCompleteFramesOnFullDisk_data()
{
    const TestTable<QString, int> row("format", "limit");
    for (const QByteArray format : {"gif", "png", "webp"}) {
        row(format + ", many frames", format, 250'000);
        row(format + ", few frames", format, 100'000);
    }
}

void AnimationFaultsTest::keepsCompleteFramesOnFullDisk()
{
    QFETCH(QString, format);
    QFETCH(int, limit);
    quint64 written = 0;
    {
        expectWarning("Cannot write ");
        const FileSizeLimit fullDisk{quint64(limit)};
        const auto encoder = makeAnimationEncoder(format, kSize, path(format), kFps, 100);
        QVERIFY(addUntilFailure(*encoder) < 100);
        QVERIFY(!encoder->close());
        QVERIFY2(encoder->errorString().startsWith("Cannot write "), qPrintable(encoder->errorString()));
        written = encoder->framesWritten();
    }
    QVERIFY(written > 0);
    QVERIFY(QFileInfo(path(format)).size() <= limit);
    const DecodedAnimation animation(path(format));
    QCOMPARE(animation.errorString, QString());
    QCOMPARE(quint64(animation.frames.size()), written);
    if (format != QLatin1String("gif"))
        QVERIFY(animation.frames.back() == noise(kSize, uint(written - 1)).convertToFormat(QImage::Format_ARGB32));
}

void AnimationFaultsTest::webpStopsBeforeItsSizeLimit()
{
    const QString name = path("webp");
    const std::atomic<bool> cancelled{false};
    FrameComparer comparer(kSize, 2);
    OutputFile file;
    QVERIFY(file.open(name));
    WebpFormat format(100, 200000);
    QVERIFY(format.writeHeader(file, kSize, 0));
    int frames = 0;
    for (; frames < 100; ++frames) {
        const FrameDelta delta = comparer.accept(noise(kSize, uint(frames)), QRect(QPoint(0, 0), kSize));
        if (!format.writeFrame(file, format.encode(delta, cancelled), 40))
            break;
    }
    QCOMPARE(file.errorString(), QString("A WebP file cannot be larger than 4 GiB"));
    QVERIFY(file.size() > 150000 && file.size() <= 200000);
    QVERIFY(file.truncate(file.size()));
    QVERIFY(format.writeTrailer(file));
    const DecodedAnimation animation(name);
    QCOMPARE(animation.errorString, QString());
    QCOMPARE(int(animation.frames.size()), frames);
}

void AnimationFaultsTest::pngKeepsCompleteFramesWhenRewritingFails_data()
{
    const TestTable<bool, quint64, QString> row("isAborted", "limit", "error");
    row("aborted", true, quint64(1e9), "Aborted");
    row("full disk", false, 100'000, "Cannot write ");
}

void AnimationFaultsTest::pngKeepsCompleteFramesWhenRewritingFails()
{
    QFETCH(bool, isAborted);
    QFETCH(quint64, limit);
    QFETCH(QString, error);
    const QString name = path("png");
    FrameComparer comparer(kSize, 1);
    OutputFile file;
    QVERIFY(file.open(name));
    ApngFormat format(kFps, 100);
    QVERIFY(format.writeHeader(file, kSize, 0));
    std::vector<QImage> images;
    std::atomic<bool> cancelled{false};
    const auto encoded = [&](int frame) {
        QImage image = noise(kSize, 0);
        image.setPixel(frame, 3, qRgb(0, 0, 0));
        image.setPixel(50, 80 - frame, qRgb(0, 0, 0));
        images.push_back(image.convertToFormat(QImage::Format_ARGB32));
        return format.encode(comparer.accept(image, QRect(QPoint(0, 0), kSize)), cancelled);
    };
    const int frames = 20;
    for (int frame = 0; frame < frames; ++frame)
        QVERIFY(format.writeFrame(file, encoded(frame), 40));
    const qint64 size = file.size();
    QVERIFY(size < 60000);
    EncodedFrame next = encoded(frames);
    QVERIFY(format.prepareToWrite(file, next, cancelled));
    QCOMPARE(file.size(), size);
    next.unusedColor.reset(); // as if it used all candidates

    cancelled = isAborted;
    {
        const FileSizeLimit fullDisk{limit};
        QVERIFY(!format.prepareToWrite(file, next, cancelled));
    }
    QVERIFY2(file.errorString().startsWith(error), qPrintable(file.errorString()));
    QCOMPARE(file.size(), size);
    QVERIFY(file.truncate(size));
    QVERIFY(format.writeTrailer(file));
    const DecodedAnimation animation(name);
    QCOMPARE(animation.errorString, QString());
    images.pop_back();
    QVERIFY(animation.frames == images);
    QVERIFY(!QFileInfo::exists(name + ".opaque"));
}

void AnimationFaultsTest::abortsWithoutEncodingTheQueue()
{
    QFETCH(QString, format);
    const QSize size(1280, 720);
    const QImage images[]{noise(size, 0), noise(size, 1)};
    const auto encoder = makeAnimationEncoder(format, size, path(format), kFps, 90);
    quint64 frame = 0;
    for (; encoder->framesWritten() == 0; ++frame)
        QVERIFY(encoder->addFrame(frame, images[frame % 2]));
    encoder->abort();
    QVERIFY(encoder->framesWritten() < frame);
    QCOMPARE(encoder->errorString(), QString("Aborted"));
    QVERIFY(!encoder->isValid());
    QVERIFY(!encoder->addFrame(frame, images[0]));
    QVERIFY(!encoder->close());
    QVERIFY2(QFileInfo(path(format)).size() > 0, "what was written must stay");

    const auto complete = makeAnimationEncoder(format, kSize, path(format), kFps, 90);
    QVERIFY(complete->addFrame(0, patches(kSize, 0)));
    QVERIFY(complete->close());
    complete->abort();
    QVERIFY(complete->isValid());
    QVERIFY(complete->close());
}

/// A huge frame takes seconds to encode.
void AnimationFaultsTest::cancelsAFrameBeingEncoded()
{
    QFETCH(QString, format);
    std::unique_ptr<AnimationFormat> encoder = std::make_unique<GifFormat>(90);
    if (format == QLatin1String("png"))
        encoder = std::make_unique<ApngFormat>(kFps, 90);
    else if (format == QLatin1String("webp"))
        encoder = std::make_unique<WebpFormat>(90);
    const QSize size(640, 480);
    const FrameDelta delta = FrameComparer(size, 2).accept(noise(size, 0), QRect(QPoint(0, 0), size));
    encoder->analyzeFirstFrame(delta);
    std::atomic<bool> cancelled{false};
    const int whole = encoder->encode(delta, cancelled).data.size();
    cancelled = true;
    QVERIFY(encoder->encode(delta, cancelled).data.size() < whole / 100);
}

/// Destroying an item may take long; abort() must not wait for it.
void AnimationFaultsTest::abortsWithoutWaitingForDroppedItems()
{
    std::promise<void> aborted;
    const std::shared_future<void> isAborted = aborted.get_future().share();
    std::atomic<int> destroyed{0};
    const auto slowToDestroy = [&] {
        return std::shared_ptr<void>(nullptr, [&](void *) {
            if (isAborted.wait_for(std::chrono::seconds(20)) == std::future_status::ready)
                ++destroyed;
        });
    };
    {
        BoundedWorker<std::shared_ptr<void>> worker(3, [](const std::shared_ptr<void> &) { return true; });
        for (int i = 0; i < 3; ++i)
            QVERIFY(worker.push(slowToDestroy()));
        worker.abort();
        aborted.set_value();
    }
    QCOMPARE(destroyed.load(), 3);
}

QTEST_MAIN(AnimationFaultsTest)
#include "tst_animation_faults.moc"
