#include "avcodec/NumberedVideo.h"
#include "avcodec/decode/FrameConverter.h"
#include "avcodec/decode/ffv1Decoder.h"
#include "avcodec/decode/h264Decoder.h"
#include "support/TestTable.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace av;

namespace
{

// Saturated enough that a wrong matrix or range exceeds the tolerance by far.
const QColor kColor(210, 60, 30);

} // namespace

/// Decoded pixels have the encoded colors.
class DecodedColorsTest : public QObject
{
    Q_OBJECT

private slots:
    void colors_data();
    void colors();
    void hardwareFrames();

private:
    QTemporaryDir m_dir;
};

void DecodedColorsTest::colors_data()
{
    const TestTable<QString, QString, QStringList, int> row("size", "filter", "options", "tolerance");
    const QStringList x264{"-c:v", "libx264", "-crf", "4"};
    const QStringList ffv1{"-c:v", "ffv1"};
    const auto tagged = [&](const char *matrix, const char *range) {
        return x264 + QStringList{"-colorspace", matrix, "-color_range", range};
    };
    const auto converted = [](const char *matrix, const char *range, const char *format) {
        return QString("scale=out_color_matrix=%1:out_range=%2:flags=accurate_rnd,format=%3")
            .arg(matrix, range, format);
    };
    const QString bt709 = converted("bt709", "tv", "yuv420p");
    const QString bt601 = converted("bt601", "tv", "yuv420p");
    const QString fullColor = converted("bt709", "tv", "yuv444p");
    row("BT.709, small", "160x90", bt709, tagged("bt709", "tv"), 3);
    row("BT.601, large", "1280x720", bt601, tagged("smpte170m", "tv"), 3);
    row("full range", "160x90", converted("bt709", "pc", "yuv420p"), tagged("bt709", "pc"), 3);
    row("4:4:4", "160x90", fullColor, tagged("bt709", "tv"), 3);
    row("odd size", "161x91", fullColor, tagged("bt709", "tv"), 3);
    row("unspecified, small", "160x90", bt601, x264, 3);
    row("unspecified, large", "1280x720", bt709, x264, 3);
    row("RGB", "160x90", "format=gbrp", {"-c:v", "libx264rgb", "-crf", "16"}, 2);
    row("RGB, lossless, odd size", "163x91", "format=gbrp", {"-c:v", "libx264rgb", "-crf", "0"}, 0);
    row("FFV1", "163x91", "format=bgr0", ffv1, 0);
    // Recorded screens are opaque even if their alpha bytes were never set.
    row("FFV1, empty alpha", "160x90", "format=bgra,colorchannelmixer=aa=0", ffv1, 0);
    row("FFV1, 4:2:0", "160x90", bt601, ffv1, 3);
}

void DecodedColorsTest::colors()
{
    QFETCH(QString, size);
    QFETCH(QString, filter);
    QFETCH(QStringList, options);
    QFETCH(int, tolerance);
    const bool isFfv1 = options.contains("ffv1");
    const QString path = m_dir.filePath(isFfv1 ? "color.mkv" : "color.mp4");
    const QString source = QString("color=c=0x%1:size=%2:rate=30,format=bgr0")
                               .arg(kColor.rgb() & 0xffffff, 6, 16, QLatin1Char('0'))
                               .arg(size);
    QVERIFY(NumberedVideo::runFfmpeg(QStringList{"-f", "lavfi", "-i", source, "-frames:v", "2", "-vf", filter} +
                                     options + QStringList{path}));
    const std::unique_ptr<VideoFileDecoder> decoder =
        isFfv1 ? std::unique_ptr<VideoFileDecoder>(std::make_unique<ffv1Decoder>(path))
               : std::make_unique<h264Decoder>(path, h264Decoder::PreferH264DecodeParams(false));
    const QImage image = decoder->decodeFrame(1);
    QCOMPARE(QString("%1x%2").arg(image.width()).arg(image.height()), size);
    for (const QPoint at : {QPoint(0, 0), image.rect().center(), image.rect().bottomRight()}) {
        const QColor found = image.pixelColor(at);
        const int error = qMax(qAbs(found.red() - kColor.red()),
                               qMax(qAbs(found.green() - kColor.green()), qAbs(found.blue() - kColor.blue())));
        QVERIFY2(error <= tolerance, qPrintable(found.name() + " is not " + kColor.name()));
        QCOMPARE(qAlpha(image.pixel(at)), 255);
    }
}

/// Hardware decoders deliver NV12, which must convert like planar 4:2:0.
void DecodedColorsTest::hardwareFrames()
{
    const QSize size(160, 90);
    const auto newFrame = [&](AVPixelFormat format) {
        av::Frame frame(av_frame_alloc());
        frame->width = size.width();
        frame->height = size.height();
        frame->format = format;
        frame->colorspace = AVCOL_SPC_BT709;
        return av_frame_get_buffer(frame.get(), 0) == 0 ? std::move(frame) : av::Frame();
    };
    const av::Frame planar = newFrame(AV_PIX_FMT_YUV420P), device = newFrame(AV_PIX_FMT_NV12);
    QVERIFY(planar && device);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const auto luma = uchar(16 + (x + y) % 220);
            planar->data[0][y * planar->linesize[0] + x] = device->data[0][y * device->linesize[0] + x] = luma;
            const uchar chroma[] = {uchar(64 + x / 2), uchar(192 - y)};
            for (int plane : {1, 2}) {
                planar->data[plane][y / 2 * planar->linesize[plane] + x / 2] = chroma[plane - 1];
                device->data[1][y / 2 * device->linesize[1] + x / 2 * 2 + plane - 1] = chroma[plane - 1];
            }
        }
    }
    FrameConverter converter;
    const QImage expected = converter.convert(*planar), found = converter.convert(*device);
    QCOMPARE(found.size(), size);
    int error = 0;
    for (int i = 0; i < size.width() * size.height() * 4; ++i)
        error = qMax(error, qAbs(expected.constBits()[i] - found.constBits()[i]));
    QVERIFY2(error <= 4, qPrintable(QString::number(error)));
}

QTEST_GUILESS_MAIN(DecodedColorsTest)
#include "tst_decoded_colors.moc"
