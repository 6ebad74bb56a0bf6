// Content and timing of animated GIF, PNG and WebP files as other software reads them.

#include "avcodec/AnimationSample.h"
#include "avcodec/DecodedAnimation.h"
#include "avcodec/DecodedVideo.h"
#include "support/TestTable.h"

#include <QFileInfo>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

namespace
{

const QByteArrayList kFormats{"gif", "png", "webp"};

bool sameColors(const QImage &a, const QImage &b)
{
    return a.convertToFormat(QImage::Format_ARGB32) == b.convertToFormat(QImage::Format_ARGB32);
}

} // namespace

class AnimationsTest : public QObject
{
    Q_OBJECT

private slots:
    void showsEachFrameAtItsTime_data();
    void showsEachFrameAtItsTime();
    void dropsFramesBelowTheMinimumDuration_data();
    void dropsFramesBelowTheMinimumDuration();
    void unchangedFramesTakeNoBytes_data();
    void unchangedFramesTakeNoBytes();
    void distantChangesTakeFewBytes_data() { addAnimationFormats(); }
    void distantChangesTakeFewBytes();
    void showsColorsThatStoodForTransparency();
    void encodesAnySize_data();
    void encodesAnySize();
    void encodesAnyImageFormat_data();
    void encodesAnyImageFormat();
    void hasTheDocumentedQuality_data();
    void hasTheDocumentedQuality();

private:
    using Painter = std::function<QImage(int frame)>;

    QString path(const QString &format) const { return m_dir.filePath("animation." + format); }

    /// Encodes frames, whose memory is overwritten at once, and reads them back.
    DecodedAnimation encoded(const QString &format, QSize size, int fps, int quality, int count, const Painter &paint,
                             const QString &extra = {});

    QTemporaryDir m_dir;
};

DecodedAnimation AnimationsTest::encoded(const QString &format, QSize size, int fps, int quality, int count,
                                         const Painter &paint, const QString &extra)
{
    const auto encoder = makeAnimationEncoder(format, size, path(format), fps, quality, extra);
    for (int frame = 0; frame < count; ++frame) {
        QImage image = paint(frame);
        uchar *const pixels = image.bits();
        encoder->addFrame(quint64(frame),
                          QImage(pixels, size.width(), size.height(), image.bytesPerLine(), image.format()));
        std::fill_n(pixels, image.sizeInBytes(), uchar(0x55));
    }
    const bool complete = encoder->close();
    DecodedAnimation animation(path(format));
    if (!complete || encoder->framesWritten() != quint64(count))
        animation.errorString = QString("not complete: %1").arg(encoder->errorString());
    return animation;
}

void AnimationsTest::showsEachFrameAtItsTime_data()
{
    const TestTable<QString, int, int> row("format", "fps", "plays");
    for (const QByteArray &format : kFormats) {
        for (const auto &[fps, plays] :
             {std::pair(1, 0), {10, 1}, {24, 2}, {25, 65535}, {30, 0}, {33, 0}, {50, 0}, {60, 0}, {75, 0}}) {
            if (fps <= 50 || format != "gif")
                row(format + " at " + QByteArray::number(fps), format, fps, plays);
        }
    }
}

void AnimationsTest::showsEachFrameAtItsTime()
{
    QFETCH(QString, format);
    QFETCH(int, fps);
    QFETCH(int, plays);
    const QSize size(150, 131);
    const int count = 50;
    const auto paint = [&](int frame) { return patches(size, frame); };
    const DecodedAnimation animation =
        encoded(format, size, fps, 100, count, paint, plays > 0 ? QString("loop=%1").arg(plays) : QString());
    QCOMPARE(animation.errorString, QString());
    QVERIFY(std::abs(animation.totalMs() - 1000.0 * count / fps) <= 5);
    for (const double duration : animation.durationsMs)
        QVERIFY2(std::abs(duration - std::round(duration)) < 0.001, "browsers truncate to whole milliseconds");
    for (int frame = 0; frame < count; ++frame) {
        const QImage shown = animation.at((frame + 0.5) * 1000 / fps);
        QVERIFY2(sameColors(shown, patches(size, frame)), qPrintable(QString::number(frame)));
    }
    QCOMPARE(animation.plays, plays);
}

void AnimationsTest::dropsFramesBelowTheMinimumDuration_data()
{
    const TestTable<QString, int, int> row("format", "fps", "shortestMs");
    row("gif at 60", "gif", 60, 20);
    row("gif at 1000", "gif", 1000, 20);
    row("png at 100", "png", 100, 11);
    row("png at 1000", "png", 1000, 11);
    row("webp at 100", "webp", 100, 11);
    row("webp at 1000", "webp", 1000, 11);
}

void AnimationsTest::dropsFramesBelowTheMinimumDuration()
{
    QFETCH(QString, format);
    QFETCH(int, fps);
    QFETCH(int, shortestMs);
    const QSize size(64, 48);
    const int count = 125;
    const DecodedAnimation animation =
        encoded(format, size, fps, 100, count, [&](int frame) { return patches(size, frame); });
    QCOMPARE(animation.errorString, QString());
    QVERIFY(std::abs(animation.totalMs() - 1000.0 * count / fps) <= shortestMs);
    for (const double duration : animation.durationsMs)
        QVERIFY2(duration > shortestMs - 0.01, qPrintable(QString::number(duration)));
    QVERIFY(sameColors(animation.frames.back(), patches(size, count - 1)));
}

void AnimationsTest::unchangedFramesTakeNoBytes_data()
{
    const TestTable<QString, int> row("format", "frames");
    row("gif", "gif", 3 + 3); // its longest duration is exceeded
    row("png", "png", 3);
    row("webp", "webp", 3);
}

void AnimationsTest::unchangedFramesTakeNoBytes()
{
    QFETCH(QString, format);
    QFETCH(int, frames);
    const QSize size(40, 30);
    const int fps = 10;
    const QImage images[]{patches(size, 0), patches(size, 1), noise(size, 0)};
    const auto encoder = makeAnimationEncoder(format, size, path(format), fps, 100);
    // Half an hour without changes; adding each of its frames or leaving them out makes no difference.
    const quint64 starts[]{0, 5, 20000};
    for (quint64 frame = 0; frame < 30; ++frame)
        QVERIFY(encoder->addFrame(frame, images[frame < starts[1] ? 0 : 1].copy()));
    QVERIFY(encoder->addFrame(starts[2], images[2]));
    QVERIFY(encoder->repeatLastFrameUntil(20007));
    QVERIFY(encoder->repeatLastFrameUntil(20003)); // already shown longer
    QVERIFY(encoder->close());
    QCOMPARE(encoder->framesWritten(), quint64(20007));

    const DecodedAnimation animation(path(format));
    QCOMPARE(animation.errorString, QString());
    QCOMPARE(int(animation.frames.size()), frames);
    QCOMPARE(animation.totalMs(), 2000700.0);
    QVERIFY(sameColors(animation.at(1999990), images[1]));
}

/// The unchanged area between two changes must not be written again.
void AnimationsTest::distantChangesTakeFewBytes()
{
    QFETCH(QString, format);
    const QSize size(320, 240);
    const auto paint = [&](int frame) {
        QImage image = noise(size, 1);
        image.setPixel(100, 100, qRgb(2, 253, 1)); // the first candidate for the transparent color
        QPainter painter(&image);
        const QColor color(20 * frame, 100, 0);
        painter.fillRect(QRect(2, 3, 5, 4), color);
        painter.fillRect(QRect(311, 230, 5, 4), color);
        return image;
    };
    qint64 bytes[2];
    for (const int run : {0, 1}) {
        const int count = 2 + 10 * run;
        const DecodedAnimation animation = encoded(format, size, 25, 100, count, paint);
        QCOMPARE(animation.errorString, QString());
        for (int frame = 0; frame < count && format != "gif"; ++frame) // GIF has too few colors
            QVERIFY(sameColors(animation.frames[std::size_t(frame)], paint(frame)));
        bytes[run] = QFileInfo(path(format)).size();
    }
    QVERIFY2(bytes[1] - bytes[0] < 10 * 1000, qPrintable(QString::number(bytes[1] - bytes[0])));
}

/// Each round uses, in its later frames, one more of the colors that stood for transparency before, until no candidate
/// is left.
void AnimationsTest::showsColorsThatStoodForTransparency()
{
    const QSize size(160, 120);
    const int framesEach = 3;
    std::vector<QRgb> colors;
    for (bool hasTransparency = true; hasTransparency;) {
        const auto paint = [&](int frame) {
            QImage image = noise(size, 1);
            QPainter(&image).fillRect(frame, 3, 5, 4, Qt::blue);
            for (int past = 0; past < frame / framesEach; ++past)
                image.setPixel(150, 100 + past, colors[std::size_t(past)]);
            image.setPixel(100, 90 + frame % framesEach, qRgb(1, 2, 3));
            return image;
        };
        const int count = framesEach * int(colors.size() + 1);
        const DecodedAnimation animation = encoded("png", size, 25, 100, count, paint);
        QCOMPARE(animation.errorString, QString());
        QCOMPARE(animation.frames.size(), std::size_t(count));
        for (int frame = 0; frame < count; ++frame)
            QVERIFY2(sameColors(animation.frames[std::size_t(frame)], paint(frame)),
                     qPrintable(QString::number(frame)));

        QFile file(path("png"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray start = file.read(100);
        const int transparency = start.indexOf("tRNS");
        hasTransparency = transparency >= 0;
        if (hasTransparency)
            colors.push_back(qRgb(start[transparency + 5], start[transparency + 7], start[transparency + 9]));
    }
    QVERIFY(colors.size() > 1);
    QCOMPARE(QDir(m_dir.path()).entryList(QStringList{"*.png.*"}), QStringList());
}

void AnimationsTest::encodesAnySize_data()
{
    const TestTable<QString, QSize> row("format", "size");
    for (const QByteArray &format : kFormats) {
        row(format + " 1x1", format, QSize(1, 1));
        row(format + " 1x300", format, QSize(1, 300));
        row(format + " 17x5", format, QSize(17, 5));
        row(format + " 641x359", format, QSize(641, 359));
    }
    row("png 7680x4320", "png", QSize(7680, 4320));
}

void AnimationsTest::encodesAnySize()
{
    QFETCH(QString, format);
    QFETCH(QSize, size);
    const auto paint = [&](int frame) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        if (frame == 1) // odd coordinates must not be truncated
            image.setPixel(size.width() - 1, size.height() - 1, qRgb(200, 10, 30));
        return image;
    };
    for (int count = size.width() > 1000 ? 2 : 1; count <= 2; ++count) {
        const DecodedAnimation animation = encoded(format, size, 30, 100, count, paint);
        QCOMPARE(animation.errorString, QString());
        QCOMPARE(int(animation.frames.size()), count);
        for (int frame = 0; frame < count; ++frame)
            QVERIFY(sameColors(animation.frames[std::size_t(frame)], paint(frame)));
    }
}

void AnimationsTest::encodesAnyImageFormat_data()
{
    const TestTable<QImage::Format> row("imageFormat");
    row("RGB32 without alpha bits", QImage::Format_RGB32);
    row("premultiplied", QImage::Format_ARGB32_Premultiplied);
    row("not premultiplied", QImage::Format_ARGB32);
    row("3 bytes per pixel", QImage::Format_RGB888);
    row("gray", QImage::Format_Grayscale8);
}

void AnimationsTest::encodesAnyImageFormat()
{
    QFETCH(QImage::Format, imageFormat);
    const QSize size(33, 20);
    QImage translucent(size, QImage::Format_ARGB32_Premultiplied);
    translucent.fill(QColor(200, 100, 50, 128));
    QPainter(&translucent).fillRect(3, 3, 9, 9, Qt::green);
    QImage given = translucent.convertToFormat(imageFormat);
    if (imageFormat == QImage::Format_RGB32) // as from X11
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                reinterpret_cast<QRgb *>(given.scanLine(y))[x] &= 0xffffffu;
    QImage shown(size, QImage::Format_ARGB32_Premultiplied);
    shown.fill(Qt::black);
    QPainter(&shown).drawImage(0, 0, given);
    if (imageFormat == QImage::Format_RGB32)
        shown = translucent.convertToFormat(QImage::Format_RGB32);

    const DecodedAnimation animation = encoded("png", size, 30, 100, 2, [&](int) { return given; });
    QCOMPARE(animation.errorString, QString());
    QCOMPARE(animation.frames.size(), std::size_t(1));
    QVERIFY(psnr(animation.frames[0], shown) > 48); // rounding may differ
}

void AnimationsTest::hasTheDocumentedQuality_data()
{
    const TestTable<QString, bool, QVector<double>> row("format", "isPhotograph", "decibels"); // at least
    row("gif photograph", "gif", true, {25, 29, 32.5, 33});
    row("gif screen", "gif", false, {25, 33, 45, kLossless});
    row("png photograph", "png", true, {kLossless, kLossless, kLossless, kLossless});
    row("webp photograph", "webp", true, {30, 32, 33.5, kLossless});
    row("webp screen", "webp", false, {25, 33, 45, kLossless});
}

void AnimationsTest::hasTheDocumentedQuality()
{
    QFETCH(QString, format);
    QFETCH(bool, isPhotograph);
    QFETCH(QVector<double>, decibels);
    const int qualities[]{30, 60, 90, 100};
    const QSize size(320, 240);
    const int count = 3;
    const auto paint = [&](int frame) { return isPhotograph ? landscape(size, frame) : patches(size, frame); };
    qint64 lastBytes = 0;
    double last = 0;
    for (int i = 0; i < 4; ++i) {
        const DecodedAnimation animation = encoded(format, size, 25, qualities[i], count, paint);
        QCOMPARE(animation.errorString, QString());
        double worst = kLossless;
        for (int frame = 0; frame < count; ++frame)
            worst = std::min(worst, psnr(animation.at((frame + 0.5) * 40), paint(frame)));
        const qint64 bytes = QFileInfo(path(format)).size();
        const QByteArray found = QByteArray::number(worst) + " dB, " + QByteArray::number(bytes) + " bytes at " +
                                 QByteArray::number(qualities[i]);
        QVERIFY2(worst >= decibels[i] && worst >= last && bytes >= lastBytes, found);
        last = worst;
        lastBytes = bytes;
    }
}

QTEST_MAIN(AnimationsTest)
#include "tst_animations.moc"
