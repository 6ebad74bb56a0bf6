#include "lottie/KelLottie.h"
#include "lottie/TransformedImage.h"
#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/PaintedPart.h"
#include "support/TestTable.h"

#include <QCryptographicHash>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace kel;

namespace
{

const char kTransform[] = R"({"ty":"tr","p":{"a":0,"k":[0,0]},"a":{"a":0,"k":[0,0]},"s":{"a":0,"k":[100,100]},)"
                          R"("r":{"a":0,"k":0},"o":{"a":0,"k":100}})";

/// 10 frames of 100 x 100 units: a filled red accent square at 10 to 50; a red accent bar, drawn as a stroke, at x 70
/// to 90 and y 10 to 30; a green square that is not an accent at 70 to 90.
QByteArray sample()
{
    return QByteArray(R"({"v":"5.5.7","fr":25,"ip":0,"op":10,"w":100,"h":100,"layers":[{"ty":4,"ip":0,"op":10,"st":0,
        "ks":{"o":{"a":0,"k":100}},"shapes":[
        {"ty":"gr","it":[{"ty":"rc","p":{"a":0,"k":[30,30]},"s":{"a":0,"k":[40,40]},"r":{"a":0,"k":0}},
            {"ty":"fl","nm":"accent","c":{"a":0,"k":[1,0,0,1]},"o":{"a":0,"k":100},"r":1},PLACED]},
        {"ty":"gr","it":[{"ty":"sh","ks":{"a":0,"k":{"c":false,"v":[[70,20],[90,20]],"i":[[0,0],[0,0]],"o":[[0,0],[0,0]]}}},
            {"ty":"st","nm":"accent","c":{"a":0,"k":[1,0,0,1]},"o":{"a":0,"k":100},"w":{"a":0,"k":20},"lc":1,"lj":1},PLACED]},
        {"ty":"gr","it":[{"ty":"rc","p":{"a":0,"k":[80,80]},"s":{"a":0,"k":[20,20]},"r":{"a":0,"k":0}},
            {"ty":"fl","nm":"own","c":{"a":0,"k":[0,1,0,1]},"o":{"a":0,"k":100},"r":1},PLACED]}]}]})")
        .replace("PLACED", kTransform);
}

QImage canvas(int width, int height, double devicePixelRatio = 1)
{
    QImage image(QSize(width, height) * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    return image;
}

/// The frame in `target` on a canvas; in all of it by default.
QImage painted(KelLottie &lottie, float frame, const QSize &size, const QRectF &target = {}, double angle = 0,
               double ratio = 1)
{
    QImage image = canvas(size.width(), size.height(), ratio);
    QPainter painter(&image);
    lottie.paint(&painter, frame, target.isEmpty() ? QRectF(QPointF(), size) : target, angle);
    return image;
}

double coverage(const QImage &image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += qAlpha(image.pixel(x, y)) / 255.0;
    }
    return sum / (image.width() * image.height());
}

} // namespace

class LottieTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_directory;

    QString write(const QByteArray &text)
    {
        writeFile(m_directory.filePath("animation.json"), text);
        return m_directory.filePath("animation.json");
    }

private slots:
    /// An effect is visible from its first frame, large at its hold frame, and has faded out by its last frame.
    void effects()
    {
        for (const auto &[name, holdFrame] : {std::pair("click_ray", 8),
                                              {"click_floral", 0},
                                              {"click_fireworks", 12},
                                              {"click_starts", 8},
                                              {"click_ripple", 12},
                                              {"wheel_arrow", 18}}) {
            KelLottie effect(QString(":/KelScreenRecord/%1.json").arg(name));
            QCOMPARE(effect.frameRate(), 60.0);
            QCOMPARE(effect.totalFrame(), 48ULL);
            for (int side : {64, 256}) {
                const auto covered = [&](int frame) { return coverage(painted(effect, float(frame), {side, side})); };
                QVERIFY2(covered(0) > 0.01, name);
                QVERIFY2(covered(holdFrame) > 0.05 && covered(holdFrame) >= covered(0), name);
                QVERIFY2(covered(47) < 0.03, name);
            }
        }
    }

    void positionAndAngle()
    {
        const QRectF target(20, 10, 120, 120);
        // Each angle with the center of the red square, as a fraction of the target.
        const QPair<double, QPointF> angles[] = {{0, {0.3, 0.3}},
                                                 {90, {0.7, 0.3}},
                                                 {180, {0.7, 0.7}},
                                                 {-90, {0.3, 0.7}},
                                                 {45, {0.5, 0.5 - 0.2 * std::sqrt(2.0)}}};
        KelLottie lottie(write(sample()));
        for (double ratio : {1.0, 1.5, 2.0}) {
            for (double zoom : {1.0, 0.5}) {
                for (const auto &[angle, red] : angles) {
                    QImage image = canvas(200, 160, ratio);
                    QPainter painter(&image);
                    painter.translate(10, 4);
                    painter.scale(zoom, zoom);
                    lottie.paint(&painter, 3, target, angle);
                    painter.end();
                    const auto pixel = [&](const QPointF &place) { return (place * zoom + QPointF(10, 4)) * ratio; };
                    const QPoint middle = pixel(target.topLeft() + red * target.width()).toPoint();
                    QCOMPARE(image.pixelColor(middle), QColor(Qt::red));
                    // Nothing is painted outside of the target, or of its bounding square at 45 degrees.
                    const double half = target.width() / 2 * zoom * ratio * (angle == 45 ? M_SQRT2 : 1) + 1;
                    const QRectF around(pixel(target.center()) - QPointF(half, half), QSizeF(2 * half, 2 * half));
                    QVERIFY(around.contains(paintedPart(image)));
                }
            }
        }
    }

    /// Axis-aligned frames are painted without resampling, at any scale and fractional position.
    void axisAlignedFramesAreSharp()
    {
        struct Case {
            double ratio;
            QPointF place;
            double angle;
        };
        KelLottie lottie(write(sample()));
        for (const Case &c : {Case{1, {10, 10}, 0},
                              {2, {10, 10}, 0},
                              {2, {10, 10}, 180},
                              {2, {10, 10}, 90},
                              {1, {10.4, 9.7}, 0},
                              {1, {10.4, 9.7}, 180}}) {
            const QImage image = painted(lottie, 0, {80, 80}, QRectF(c.place, QSizeF(50, 50)), c.angle, c.ratio);
            // All edges of the sample are on pixel boundaries here, so every pixel is covered or not.
            int covered = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const int alpha = qAlpha(image.pixel(x, y)); // strokes are off by a few 255ths
                    QVERIFY2(alpha <= 5 || alpha >= 250, qPrintable(QString("%1 at %2,%3").arg(alpha).arg(x).arg(y)));
                    covered += alpha >= 250;
                }
            }
            QCOMPARE(covered, int((0.16 + 0.04 + 0.04) * 50 * 50 * c.ratio * c.ratio));
        }
    }

    /// Transformed images are the same to the bit on every machine: exports are compared by their bytes.
    void transformsImages()
    {
        QImage source(41, 30, QImage::Format_ARGB32_Premultiplied);
        for (int y = 0; y < source.height(); ++y) {
            for (int x = 0; x < source.width(); ++x)
                source.setPixel(x, y, qRgba(x * 6, y * 8, (x * y) % 256, (x * 37 + y * 91) % 256));
        }
        QCOMPARE(transformedImage(source, QTransform(), {3, 2, 20, 9}), source.copy(3, 2, 20, 9));
        QCOMPARE(transformedImage(source, QTransform().rotate(90), {-30, 0, 30, 41}),
                 source.transformed(QTransform().rotate(90)));
        QCOMPARE(coverage(transformedImage(source, QTransform(), {100, 0, 5, 5})), 0.0);
        QVERIFY(transformedImage(source, QTransform(), {}).isNull());

        const QTransform transform = QTransform().translate(40, 10).rotate(-50).scale(0.6, 0.6);
        const QImage transformed =
            transformedImage(source, transform, transform.mapRect(QRectF(source.rect())).toAlignedRect());
        const QByteArray pixels(reinterpret_cast<const char *>(transformed.constBits()),
                                int(transformed.sizeInBytes()));
        QCOMPARE(QCryptographicHash::hash(pixels, QCryptographicHash::Md5).toHex(),
                 QByteArray("8c5d6fe254bf6a87b85bfe84cfaba90d"));
    }

    void accentColor()
    {
        KelLottie lottie(write(sample()));
        KelLottie other(write(sample()));
        const auto shot = [](KelLottie &object) { return painted(object, 4, {100, 100}); };
        const QPoint filled(30, 30), stroked(80, 20), own(80, 80);
        QCOMPARE(shot(lottie).pixelColor(filled), QColor(Qt::red));
        for (const QColor &color : {QColor(Qt::blue), QColor(51, 136, 255), QColor(Qt::black)}) {
            lottie.setColor(color);
            const QImage image = shot(lottie); // the same frame at the same size
            QCOMPARE(image.pixelColor(filled), color);
            QCOMPARE(image.pixelColor(stroked), color);
            QCOMPARE(image.pixelColor(own), QColor(Qt::green));
        }
        QCOMPARE(shot(other).pixelColor(filled), QColor(Qt::red));
        lottie.setColor(QColor()); // has no effect
        QCOMPARE(shot(lottie).pixelColor(stroked), QColor(Qt::black));
        lottie.setColor(QColor(255, 255, 255, 128));
        QVERIFY(std::abs(qAlpha(shot(lottie).pixel(filled)) - 128) <= 1);
    }

    void unusualArguments()
    {
        KelLottie lottie(write(sample()));
        QImage image = canvas(100, 100);
        QPainter painter(&image);
        const float nan = std::numeric_limits<float>::quiet_NaN();
        lottie.paint(nullptr, 0, image.rect(), 0);
        lottie.paint(&painter, nan, image.rect(), 0);
        lottie.paint(&painter, 0, QRectF(), 0);
        lottie.paint(&painter, 0, QRectF(0, 0, -5, 10), 0);
        lottie.paint(&painter, 0, image.rect(), double(nan));
        painter.save();
        painter.scale(0, 1);
        lottie.paint(&painter, 0, image.rect(), 0);
        painter.restore();
        QCOMPARE(coverage(image), 0.0);
        lottie.paint(&painter, 1e9f, QRectF(0, 0, 50, 50), 0);
        lottie.paint(&painter, -3, QRectF(50, 50, 50, 50), 0);
        lottie.paint(&painter, 0, QRectF(0, 0, 1e7, 1e7), 30); // far larger than the device
        QCOMPARE(image.pixelColor(15, 15), QColor(Qt::red));
        QCOMPARE(image.pixelColor(65, 65), QColor(Qt::red));
    }

    void unusableFiles_data()
    {
        const TestTable<QByteArray> row("text");
        const auto with = [](const char *before, const char *after) { return sample().replace(before, after); };
        row("missing", {});
        row("empty", QByteArray(""));
        row("no JSON", QByteArray("GIF89a"));
        row("cut off", sample().left(400));
        row("no frame rate", with("\"fr\":25", "\"fr\":0"));
        row("frame rate as text", with("\"fr\":25", "\"fr\":\"25\""));
        row("no length", with("\"op\":10,\"w\"", "\"op\":0,\"w\""));
        row("endless", with("\"op\":10,\"w\"", "\"op\":1e300,\"w\""));
        row("ends before it begins", with("\"ip\":0,\"op\":10,\"w\"", "\"ip\":10,\"op\":2,\"w\""));
        row("no size", with("\"w\":100", "\"w\":0"));
        row("huge size", with("\"h\":100", "\"h\":1e9"));
        row("no layers", with("\"layers\":[", "\"layers\":[],\"others\":["));
        row("external images",
            with("\"layers\"", R"("assets":[{"id":"a","u":"/etc/","p":"passwd","w":1,"h":1}],"layers")"));
        row("endless curve", with("[[70,20],", "[[70,1e30],"));
        row("deeply nested", QByteArray(100000, '['));
        row("too large", sample() + QByteArray(KelLottie::kMaxFileSize, ' '));
    }
    void unusableFiles()
    {
        QFETCH(QByteArray, text);
        LogCapture log;
        KelLottie lottie(text.isNull() ? ":/KelScreenRecord/nothing.json" : write(text));
        QCOMPARE(log.take().filter(QRegularExpression("^W \\[KelLottie\\]")).size(), 1);
        QCOMPARE(lottie.totalFrame(), 0ULL);
        QCOMPARE(lottie.frameRate(), 0.0);
        lottie.setColor(Qt::red);
        QCOMPARE(coverage(painted(lottie, 0, {10, 10})), 0.0);
    }
};

QTEST_GUILESS_MAIN(LottieTest)

#include "tst_lottie.moc"
