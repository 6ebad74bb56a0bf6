#include "avcodec/NumberedVideo.h"
#include "avcodec/decode/VideoDemuxer.h"
#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"
#include "avcodec/ffmpeg/AvHandles.h"
#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TestTable.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <memory>

using namespace av;
using NumberedVideo::kFragmented;
using NumberedVideo::kRecorded;

namespace
{

constexpr int kFrames = 30;

const H264DecodeParams kSoftware{"h264", {}};

const QStringList kSubsampled{"-c:v", "libx264", "-pix_fmt", "yuv420p", "-g", "10"};

/// Offsets of the top-level boxes of a type.
QList<int> boxesOf(const QByteArray &mp4, const QByteArray &type)
{
    QList<int> found;
    for (int at = 0; at + 8 <= mp4.size();) {
        const quint32 size = qFromBigEndian<quint32>(mp4.constData() + at);
        if (mp4.mid(at + 4, 4) == type)
            found << at;
        at += int(qMax(size, 8U));
    }
    return found;
}

/// Where a frame is in a file, in decoding order.
Sample sampleOf(const QString &path, AVCodecID codec, int number)
{
    VideoDemuxer demuxer;
    QString error;
    if (!demuxer.open(path, codec, &error))
        qFatal("%s", qPrintable(error));
    return demuxer.index().sample(number);
}

/// The log without the messages of FFmpeg's libraries.
QStringList linesOfDecoders(LogCapture &log)
{
    return log.take().filter("Decoder] ");
}

/// All frames can be decoded and show their numbers.
void checkFrames(VideoFileDecoder &decoder, int count)
{
    QCOMPARE(decoder.getFrameCount(), count);
    for (int frame = count; frame-- > 0;)
        QCOMPARE(NumberedVideo::numberIn(decoder.decodeFrame(frame)), frame);
}

} // namespace

/// Truncated and damaged files, files that are no videos, and missing hardware.
class DecoderFaultsTest : public QObject
{
    Q_OBJECT

private slots:
    void truncatedFragments_data();
    void truncatedFragments();
    void truncatedAfterTheIndex();
    void truncatedMatroska();
    void damagedFrame_data();
    void damagedFrame();
    void rejectedFiles_data();
    void rejectedFiles();
    void rejectedContents();
    void hugeFrames();
    void missingHardware_data();
    void missingHardware();
    void preferredParams();

private:
    QTemporaryDir m_dir;
};

void DecoderFaultsTest::truncatedFragments_data()
{
    // The sixth box of this type, or the only one; bytes of it that are kept or, if negative, cut off; whole frames.
    const TestTable<QByteArray, int, int> row("box", "kept", "frames");
    row("inside the header", "moov", 60, 0);
    row("nothing but the header", "moov", -0, 0);
    row("before a fragment", "moof", 0, 5);
    row("inside a box's own header", "moof", 5, 5);
    row("inside a fragment's header", "moof", 50, 5);
    row("before the data", "mdat", 0, 5);
    row("inside the data", "mdat", 20, 5);
    row("one byte short", "mdat", -1, 5);
}

void DecoderFaultsTest::truncatedFragments()
{
    QFETCH(QByteArray, box);
    QFETCH(int, kept);
    QFETCH(int, frames);
    const QString whole = m_dir.filePath("fragments.mp4");
    QVERIFY(NumberedVideo::write(whole, kFrames, kRecorded + kFragmented));
    const QByteArray content = readFile(whole);
    const QList<int> boxes = boxesOf(content, box);
    const int at = boxes.value(boxes.size() > 1 ? 5 : 0);
    const int size = int(qFromBigEndian<quint32>(content.constData() + at));
    const bool onlyHeader = box == "moov" && kept == 0;
    const QString path = m_dir.filePath("cut.mp4");
    writeFile(path, content.left(at + (kept < 0 || onlyHeader ? size + kept : kept)));

    const LogCapture log;
    h264Decoder decoder(path, kSoftware);
    QCOMPARE(decoder.isValid(), frames > 0);
    checkFrames(decoder, frames);
}

void DecoderFaultsTest::truncatedAfterTheIndex()
{
    const QString whole = m_dir.filePath("indexed.mp4");
    QVERIFY(NumberedVideo::write(whole, kFrames, kRecorded + QStringList{"-movflags", "faststart"}));
    const Sample last = sampleOf(whole, AV_CODEC_ID_H264, 17);
    const QString path = m_dir.filePath("indexed_cut.mp4");
    writeFile(path, readFile(whole).left(int(last.offset) + last.size - 1));
    h264Decoder decoder(path, kSoftware);
    checkFrames(decoder, 17);
}

void DecoderFaultsTest::truncatedMatroska()
{
    const LogCapture log;
    for (const QStringList &clusters : {QStringList(), QStringList{"-cluster_time_limit", "200"}}) {
        const QString whole = m_dir.filePath("whole.mkv");
        QVERIFY(NumberedVideo::write(whole, kFrames, QStringList{"-c:v", "ffv1"} + clusters));
        const QString path = m_dir.filePath("cut.mkv");
        // The seek index at the end of the file is cut off as well.
        writeFile(path, readFile(whole).left(int(sampleOf(whole, AV_CODEC_ID_FFV1, 20).offset) + 30));
        ffv1Decoder decoder(path);
        checkFrames(decoder, 20);
    }
}

void DecoderFaultsTest::damagedFrame_data()
{
    const TestTable<QStringList, int, int> row("options", "damaged",
                                               "intact"); // in decoding order; percent of the frame
    const QStringList bipredicted{"-pix_fmt", "yuv420p", "-c:v", "libx264",       "-g",
                                  "10",       "-bf",     "2",    "-sc_threshold", "0"};
    row("recorded", kRecorded, 14, 0);
    row("recorded, keyframe", kRecorded, 10, 0);
    row("recorded, end of the keyframe", kRecorded, 10, 80);
    row("B-frames", bipredicted, 14, 0);
    row("B-frames, keyframe", bipredicted, 10, 0);
    row("B-frames, end of the keyframe", bipredicted, 10, 80);
}

void DecoderFaultsTest::damagedFrame()
{
    QFETCH(QStringList, options);
    QFETCH(int, damaged);
    QFETCH(int, intact);
    const LogCapture log;
    const QString whole = m_dir.filePath("intact.mp4");
    QVERIFY(NumberedVideo::write(whole, kFrames, options));
    const Sample sample = sampleOf(whole, AV_CODEC_ID_H264, damaged);
    QByteArray content = readFile(whole);
    const int kept = sample.size * intact / 100;
    content.replace(int(sample.offset) + kept, sample.size - kept, QByteArray(sample.size - kept, '\0'));
    const QString path = m_dir.filePath("damaged.mp4");
    writeFile(path, content);

    h264Decoder decoder(path, kSoftware);
    QCOMPARE(decoder.getFrameCount(), kFrames);
    QVERIFY(decoder.decodeFrame(sample.frame).isNull());
    // The GOPs before and after are intact, whatever was requested before.
    for (const int frame : {29, 25, 20, 9, 8, 4, 0, 22}) {
        QCOMPARE(NumberedVideo::numberIn(decoder.decodeFrame(frame)), frame);
        QVERIFY(decoder.decodeFrame(sample.frame).isNull());
    }
}

void DecoderFaultsTest::rejectedFiles_data()
{
    const TestTable<QByteArray> row("content"); // null: no file
    QByteArray noise;
    for (quint32 i = 0; i < 70000; ++i)
        noise.append(char((i * 2654435761U) >> 24));
    const QByteArray typeBox = QByteArray::fromHex("0000001866747970") + "isom" + QByteArray(12, 0);
    row("missing", QByteArray());
    row("empty", "");
    row("text", QByteArray("This is not a video.\n").repeated(100));
    row("noise", noise);
    row("only a type box", typeBox);
    row("a box that claims gigabytes", typeBox + QByteArray::fromHex("fffffff0") + "moov" + noise);
    row("noise for an index", typeBox + QByteArray::fromHex("00010000") + "moov" + noise);
    row("Matroska header, then noise", QByteArray::fromHex("1a45dfa3934282886d6174726f736b61") + noise);
    row("list of other files", "ffconcat version 1.0\nfile '/etc/hostname'\n");
    row("playlist", "#EXTM3U\n#EXTINF:1,\nhttp://127.0.0.1:9/a.mp4\n");
}

void DecoderFaultsTest::rejectedFiles()
{
    QFETCH(QByteArray, content);
    const QString path = m_dir.filePath("hostile.mp4");
    QFile::remove(path);
    if (!content.isNull())
        writeFile(path, content);
    LogCapture log;
    const h264Decoder h264(path, kSoftware);
    const ffv1Decoder ffv1(path);
    QVERIFY(!h264.isValid() && !ffv1.isValid());
    QCOMPARE(h264.getFrameCount(), 0);
    const QStringList lines = linesOfDecoders(log);
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines[0].startsWith("W [h264Decoder] cannot open " + path), qPrintable(lines[0]));
    QVERIFY2(lines[1].startsWith("W [ffv1Decoder] cannot open " + path), qPrintable(lines[1]));
}

void DecoderFaultsTest::rejectedContents()
{
    const LogCapture log;
    QVERIFY(!ffv1Decoder(m_dir.path()).isValid());

    const QString sound = m_dir.filePath("sound_only.mp4");
    QVERIFY(NumberedVideo::runFfmpeg({"-f", "lavfi", "-i", "sine=duration=1", sound}));
    QVERIFY(!h264Decoder(sound, kSoftware).isValid());

    const QString other = m_dir.filePath("other.mkv");
    QVERIFY(NumberedVideo::write(other, 2, {"-c:v", "ffv1"}));
    QVERIFY(!h264Decoder(other, kSoftware).isValid());
    QVERIFY(ffv1Decoder(other).isValid());

    // The demuxer would allocate gigabytes for the samples that a few bytes state.
    const QString fragments = m_dir.filePath("many_samples.mp4");
    QVERIFY(NumberedVideo::write(fragments, 2, kRecorded + kFragmented));
    QByteArray content = readFile(fragments);
    const int sampleCount = content.lastIndexOf("trun") + 8;
    writeFile(fragments, content.replace(sampleCount, 4, QByteArray::fromHex("00100000")));
    QVERIFY(!h264Decoder(fragments, kSoftware).isValid());
}

void DecoderFaultsTest::hugeFrames()
{
    const QString path = m_dir.filePath("huge.mkv");
    AVFormatContext *created = nullptr;
    QVERIFY(avformat_alloc_output_context2(&created, nullptr, "matroska", nullptr) >= 0);
    const av::FormatContext output(created);
    AVCodecParameters *video = avformat_new_stream(created, nullptr)->codecpar;
    video->codec_type = AVMEDIA_TYPE_VIDEO;
    video->codec_id = AV_CODEC_ID_FFV1;
    video->width = 20000; // accepted by the library
    video->height = 100;
    QVERIFY(avio_open(&created->pb, qPrintable(path), AVIO_FLAG_WRITE) >= 0);
    QVERIFY(avformat_write_header(created, nullptr) >= 0);
    const av::Packet packet(av_packet_alloc());
    QVERIFY(av_new_packet(packet.get(), 100) >= 0);
    memset(packet->data, 1, 100);
    packet->pts = packet->dts = 0;
    packet->flags = AV_PKT_FLAG_KEY;
    QVERIFY(av_write_frame(created, packet.get()) >= 0);
    QVERIFY(av_write_trailer(created) >= 0);
    QVERIFY(avio_closep(&created->pb) >= 0);

    LogCapture log;
    QVERIFY(!ffv1Decoder(path).isValid());
    const QStringList lines = linesOfDecoders(log);
    QVERIFY2(lines.value(0).contains("20000x100"), qPrintable(lines.value(0)));
}

void DecoderFaultsTest::missingHardware_data()
{
    const TestTable<QString, QString, bool, int> row("decoder", "device", "isRecording", "lines");
    row("no such type of device", "h264", "abacus", false, 1);
    row("a device type of another system, or not present", "h264", "d3d11va", false, 1);
    row("not tried, as no device supports recordings", "h264", "abacus", true, 0);
    row("no such decoder", "h264_abacus", "", true, 0);
    row("a decoder of something else", "ffv1", "", true, 0);
}

void DecoderFaultsTest::missingHardware()
{
    QFETCH(QString, decoder);
    QFETCH(QString, device);
    QFETCH(bool, isRecording);
    QFETCH(int, lines);
    const QString path = m_dir.filePath("software.mp4");
    QVERIFY(NumberedVideo::write(path, 12, isRecording ? kRecorded : kSubsampled));
    LogCapture log;
    h264Decoder fallback(path, {decoder, device});
    checkFrames(fallback, 12);
    QCOMPARE(linesOfDecoders(log).size(), lines);
}

void DecoderFaultsTest::preferredParams()
{
    QVERIFY(h264Decoder::isSupported() && ffv1Decoder::isSupported());
    const H264DecodeParams software = h264Decoder::PreferH264DecodeParams(false);
    QCOMPARE(software.decoderName, QString("h264"));
    QCOMPARE(software.deviceType, QString());

    // The parameters work on any machine, also for RGB, which hardware mostly does not support.
    const QString path = m_dir.filePath("preferred.mp4");
    QVERIFY(NumberedVideo::write(path, 12, kRecorded));
    const LogCapture log;
    h264Decoder preferred(path, h264Decoder::PreferH264DecodeParams(true));
    checkFrames(preferred, 12);
}

QTEST_GUILESS_MAIN(DecoderFaultsTest)
#include "tst_decoder_faults.moc"
