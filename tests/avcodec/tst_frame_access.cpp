#include "avcodec/NumberedVideo.h"
#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"
#include "support/TestTable.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <memory>
#include <random>

using namespace av;
using NumberedVideo::kFragmented;
using NumberedVideo::kRecorded;

namespace
{

constexpr int kFrames = 90;

const QStringList kBipredicted{"-pix_fmt", "yuv420p", "-c:v", "libx264", "-preset", "faster",      "-threads",
                               "1",        "-crf",    "16",   "-bf",     "3",       "-b_strategy", "0"};

std::unique_ptr<VideoFileDecoder> openVideo(const QString &path)
{
    if (path.endsWith("ffv1.mkv"))
        return std::make_unique<ffv1Decoder>(path);
    return std::make_unique<h264Decoder>(path, h264Decoder::PreferH264DecodeParams(false));
}

/// Of every 16th line, which is enough to tell frames apart.
QByteArray digest(const QImage &image)
{
    QCryptographicHash hash(QCryptographicHash::Md5);
    for (int y = 0; y < image.height(); y += 16)
        hash.addData(reinterpret_cast<const char *>(image.constScanLine(y)), image.bytesPerLine());
    return hash.result();
}

} // namespace

/// Random access to frames, and how many frames it decodes.
class FrameAccessTest : public QObject
{
    Q_OBJECT

private slots:
    void decodesFramesInAnyOrder_data();
    void decodesFramesInAnyOrder();
    void skipsFramesHiddenByAnEditList();
    void stepsBackwardsBeyondTheCache();
    void imagesOutliveTheDecoder();
    void rejectsIndicesOutOfRange();

private:
    QTemporaryDir m_dir;
};

void FrameAccessTest::decodesFramesInAnyOrder_data()
{
    const TestTable<QString, QStringList> row("name", "options");
    const QStringList openGops{"-x264-params", "open-gop=1:keyint=20:min-keyint=20:b-pyramid=normal"};
    const QStringList refresh{"-x264-params", "intra-refresh=1:keyint=20"};
    // Every fifth frame is followed by a gap of three frames.
    const QStringList variableRate{"-vf", "settb=1/30,setpts=N+floor(N/5)*3", "-vsync", "passthrough"};
    const QStringList late{"-output_ts_offset", "7"};
    const QStringList gops{"-g", "24"};

    row("recorded", "a.mp4", kRecorded + QStringList{"-x264-params", "slices=2"});
    row("recorded, one slice", "a.mp4", kRecorded);
    row("recorded, fragments", "a.mp4", kRecorded + kFragmented);
    row("recorded, Matroska", "a.mkv", kRecorded);
    row("B-frames", "a.mp4", kBipredicted + gops);
    row("B-frames, fragments", "a.mp4", kBipredicted + gops + kFragmented);
    row("B-frames, Matroska", "a.mkv", kBipredicted + gops);
    row("one GOP", "a.mp4", kBipredicted + QStringList{"-g", "1000"});
    row("open GOPs", "a.mp4", kBipredicted + openGops);
    row("open GOPs, Matroska", "a.mkv", kBipredicted + openGops);
    row("intra refresh", "a.mp4", kBipredicted + refresh);
    row("late start", "a.mp4", kBipredicted + late);
    row("late start, fragments", "a.mp4", kRecorded + kFragmented + late);
    row("variable rate", "a.mp4", kBipredicted + variableRate);
    row("variable rate, recorded", "a.mp4", kRecorded + variableRate);
    row("FFV1", "ffv1.mkv", {"-c:v", "ffv1"});
    row("FFV1, 4:2:0", "ffv1.mkv", {"-c:v", "ffv1", "-pix_fmt", "yuv420p"});
    row("FFV1, GOPs", "ffv1.mkv", {"-c:v", "ffv1", "-g", "12"});
}

void FrameAccessTest::decodesFramesInAnyOrder()
{
    QFETCH(QString, name);
    QFETCH(QStringList, options);
    const QString path = m_dir.filePath(name);
    QVERIFY(NumberedVideo::write(path, kFrames, options));

    std::vector<int> order(kFrames);
    std::iota(order.begin(), order.end(), 0);
    const auto check = [&](quint64 mostDecoded) {
        const auto decoder = openVideo(path);
        QVERIFY(decoder->isValid());
        QCOMPARE(decoder->getFrameCount(), kFrames);
        QCOMPARE(decoder->getFrameSize(), QSize(NumberedVideo::kWidth, NumberedVideo::kHeight));
        for (const int frame : order)
            QCOMPARE(NumberedVideo::numberIn(decoder->decodeFrame(frame)), frame);
        QVERIFY2(decoder->decodedFrames() <= mostDecoded, QByteArray::number(decoder->decodedFrames()));
    };
    check(kFrames);
    std::reverse(order.begin(), order.end());
    // In an open GOP, frames shown before the keyframe need the previous GOP, so both may be decoded twice.
    check(name.startsWith("ffv1") || options.contains("libx264rgb") ? kFrames * 2 : kFrames * 3);
    std::shuffle(order.begin(), order.end(), std::mt19937(7));
    check(quint64(kFrames) * kFrames);
}

void FrameAccessTest::skipsFramesHiddenByAnEditList()
{
    // The copy starts inside a GOP, so it begins with frames that are decoded but not shown.
    QVERIFY(NumberedVideo::write(m_dir.filePath("whole.mp4"), kFrames, kRecorded));
    const QString path = m_dir.filePath("cut.mp4");
    QVERIFY(NumberedVideo::runFfmpeg(
        {"-ss", "0.5", "-i", m_dir.filePath("whole.mp4"), "-c", "copy", "-avoid_negative_ts", "disabled", path}));
    const auto decoder = openVideo(path);
    constexpr int kFirst = 15;
    QCOMPARE(decoder->getFrameCount(), kFrames - kFirst);
    for (int frame = kFrames - kFirst; frame-- > 0;)
        QCOMPARE(NumberedVideo::numberIn(decoder->decodeFrame(frame)), kFirst + frame);
    QCOMPARE(NumberedVideo::numberIn(decoder->decodeFrame(0)), kFirst);
}

void FrameAccessTest::stepsBackwardsBeyondTheCache()
{
    // More than the frame cache holds: 160 frames of 720p, three bytes per pixel.
    constexpr int kManyFrames = 160;
    const QString path = m_dir.filePath("large.mp4");
    QVERIFY(NumberedVideo::runFfmpeg(
        QStringList{"-f", "lavfi", "-i", "testsrc2=size=1280x720:rate=30", "-frames:v", QString::number(kManyFrames)} +
        kRecorded + QStringList{path}));
    const auto decoder = openVideo(path);
    QCOMPARE(decoder->getFrameCount(), kManyFrames);
    std::vector<QByteArray> forward;
    for (int frame = 0; frame < kManyFrames; ++frame)
        forward.push_back(digest(decoder->decodeFrame(frame)));
    QCOMPARE(decoder->decodedFrames(), quint64(kManyFrames));
    for (int frame = kManyFrames; frame-- > 0;)
        QCOMPARE(digest(decoder->decodeFrame(frame)), forward[std::size_t(frame)]);
    // The first frames have been evicted.
    QVERIFY(decoder->decodedFrames() > quint64(kManyFrames));
    QVERIFY(decoder->decodedFrames() <= quint64(2 * kManyFrames));
}

void FrameAccessTest::imagesOutliveTheDecoder()
{
    const QString path = m_dir.filePath("kept.mp4");
    QVERIFY(NumberedVideo::write(path, kFrames, kRecorded));
    auto decoder = openVideo(path);
    QCOMPARE(decoder->getFPS(), 30.0);
    std::vector<QImage> kept;
    for (int frame = 0; frame < 8; ++frame)
        kept.push_back(decoder->decodeFrame(frame));
    kept[7] = {};
    QImage painted = decoder->decodeFrame(7);
    QCOMPARE(painted.format(), QImage::Format_RGB32);
    QVERIFY(qAbs(qBlue(painted.pixel(150, 44)) - 160) <= 2 && qAlpha(painted.pixel(150, 44)) == 255);
    painted.fill(Qt::red);
    QCOMPARE(NumberedVideo::numberIn(decoder->decodeFrame(7)), 7);
    decoder.reset();
    for (int frame = 0; frame < 7; ++frame)
        QCOMPARE(NumberedVideo::numberIn(kept[std::size_t(frame)]), frame);
}

void FrameAccessTest::rejectsIndicesOutOfRange()
{
    const QString path = m_dir.filePath("closed.mp4");
    QVERIFY(NumberedVideo::write(path, 5, kRecorded));
    const auto decoder = openVideo(path);
    QVERIFY(decoder->decodeFrame(-1).isNull());
    QVERIFY(decoder->decodeFrame(5).isNull());
    QCOMPARE(NumberedVideo::numberIn(decoder->decodeFrame(4)), 4);
    decoder->close();
    QVERIFY(!decoder->isValid());
    QVERIFY(decoder->decodeFrame(0).isNull());
    QCOMPARE(decoder->getFrameCount(), 0);
}

QTEST_GUILESS_MAIN(FrameAccessTest)
#include "tst_frame_access.moc"
