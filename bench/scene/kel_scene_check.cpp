// Compares decoded frames of the scene with the exact originals.
// Reads raw BGRA frames from standard input; prints NAME<TAB>VALUE<TAB>UNIT lines.

#include "FrameMark.h"
#include "SceneRenderer.h"

#include <QGuiApplication>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <vector>

namespace
{

constexpr double kLossless = 99.0; // dB; the formula yields infinity

bool readFrame(QImage &image)
{
    const auto size = static_cast<std::size_t>(image.sizeInBytes());
    return std::fread(image.bits(), 1, size, stdin) == size;
}

/// Over all three channels: colored text must keep its color.
double psnr(const QImage &left, const QImage &right)
{
    quint64 sum = 0;
    for (int y = 0; y < left.height(); ++y) {
        const uchar *a = left.constScanLine(y);
        const uchar *b = right.constScanLine(y);
        quint32 lineSum = 0;
        for (int i = 0; i < left.width() * 4; i += 4) {
            for (int channel = 0; channel < 3; ++channel) {
                const int difference = a[i + channel] - b[i + channel];
                lineSum += static_cast<quint32>(difference * difference);
            }
        }
        sum += lineSum;
    }
    if (sum == 0)
        return kLossless;
    const double mean = static_cast<double>(sum) / (3.0 * left.width() * left.height());
    return std::min(kLossless, 10.0 * std::log10(255.0 * 255.0 / mean));
}

void print(const char *name, double value, const char *unit)
{
    std::printf("%s\t%.2f\t%s\n", name, value, unit);
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList sides = application.arguments().value(1).split('x');
    const QSize size(sides.value(0).toInt(), sides.value(1).toInt());
    if (size.isEmpty()) {
        std::fputs("usage: kel_scene_check WxH < frames.bgra\n", stderr);
        return 2;
    }
    const SceneRenderer scene(size);
    QImage image(size, QImage::Format_RGB32);
    std::vector<double> fidelity;
    std::set<int> seen;
    int unreadable = 0;
    while (readFrame(image)) {
        const int frame = FrameMark::read(image);
        if (frame < 0) {
            ++unreadable;
            continue;
        }
        if (seen.insert(frame).second)
            fidelity.push_back(psnr(image, scene.image(frame)));
    }
    if (fidelity.empty()) {
        std::fputs("kel_scene_check: no frame of the scene\n", stderr);
        return 1;
    }
    std::sort(fidelity.begin(), fidelity.end());
    const int spanned = *seen.rbegin() - *seen.begin() + 1;
    print("frames", static_cast<double>(seen.size()), "frames");
    print("missed", spanned - static_cast<double>(seen.size()), "frames");
    print("unreadable", unreadable, "frames");
    print("psnr_median", fidelity.at(fidelity.size() / 2), "dB");
    print("psnr_worst", fidelity.front(), "dB");
    return 0;
}
