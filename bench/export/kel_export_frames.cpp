// The composed frames of an export: writes them for other programs, encodes them, and compares a file with them.
// Prints NAME<TAB>VALUE<TAB>UNIT.

#include "../Figure.h"
#include "ExportScene.h"
#include "avcodec/AnimationSample.h"
#include "avcodec/DecodedAnimation.h"
#include "avcodec/mp4/h264Encoder.h"

#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace
{

int fail(const QString &text)
{
    std::fprintf(stderr, "kel_export_frames: %s\n", qPrintable(text));
    return 1;
}

/// Raw 32-bit BGRA pixels.
int write(const ExportScene &scene, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(file.errorString());
    for (int i = 0; i < ExportScene::kFrames; ++i) {
        const QImage image = scene.frame(i);
        if (file.write(reinterpret_cast<const char *>(image.constBits()), image.sizeInBytes()) != image.sizeInBytes())
            return fail(file.errorString());
    }
    return 0;
}

int encode(const ExportScene &scene, const QString &format, int quality, const QString &path)
{
    std::vector<QImage> frames;
    for (int i = 0; i < ExportScene::kFrames; ++i)
        frames.push_back(scene.frame(i));
    QElapsedTimer timer;
    timer.start();
    const std::clock_t cpu = std::clock(); // includes all threads
    std::unique_ptr<KelAVCodecEncoder> encoder;
    if (format == "mp4")
        encoder = std::make_unique<h264Encoder>(
            h264Encoder::Params{ExportScene::size(), frames[0].format(), path, ExportScene::kFps, quality});
    else
        encoder = makeAnimationEncoder(format, ExportScene::size(), path, ExportScene::kFps, quality);
    for (std::size_t i = 0; i < frames.size(); ++i)
        encoder->addFrame(i, frames[i]);
    if (!encoder->close())
        return fail(encoder->errorString());
    printFigure("time", double(timer.nsecsElapsed()) / 1e9, "s");
    printFigure("cpu", double(std::clock() - cpu) / CLOCKS_PER_SEC, "s");
    return 0;
}

double squaredError(const QImage &a, const QImage &b)
{
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        const uchar *left = a.constScanLine(y);
        const uchar *right = b.constScanLine(y);
        qint64 line = 0;
        for (int x = 0; x < a.width() * 4; ++x) {
            const int difference = x % 4 == 3 ? 0 : left[x] - right[x];
            line += difference * difference;
        }
        sum += double(line);
    }
    return sum;
}

int compare(const ExportScene &scene, const QString &path)
{
    const DecodedAnimation animation(path);
    if (!animation.errorString.isEmpty())
        return fail(animation.errorString);
    double sum = 0;
    for (int i = 0; i < ExportScene::kFrames; ++i) {
        const QImage shown = animation.at((i + 0.5) * 1000 / ExportScene::kFps);
        if (shown.size() != ExportScene::size())
            return fail(QString("no image at frame %1").arg(i));
        sum += squaredError(shown, scene.frame(i));
    }
    const double samples = 3.0 * ExportScene::kFrames * ExportScene::size().width() * ExportScene::size().height();
    printFigure("psnr", sum == 0 ? 99 : 10 * std::log10(255 * 255 * samples / sum), "dB");
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    const QStringList arguments = app.arguments();
    if (arguments.size() < 4 || !ExportScene::names().contains(arguments[1]))
        return fail("usage: SCENE write FILE | SCENE encode FORMAT QUALITY FILE | SCENE compare FILE");
    const ExportScene scene(arguments[1]);
    if (arguments[2] == "write")
        return write(scene, arguments[3]);
    if (arguments[2] == "encode" && arguments.size() == 6)
        return encode(scene, arguments[3], arguments[4].toInt(), arguments[5]);
    return compare(scene, arguments[3]);
}
