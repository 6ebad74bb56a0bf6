// The speed of the export encoder without loading and painting frames: the upper bound for an export.
// Prints NAME<TAB>VALUE<TAB>UNIT.

#include "avcodec/decode/h264Decoder.h"
#include "avcodec/mp4/h264Encoder.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QStringList>

#include <cstdio>
#include <vector>

namespace
{

// A gigabyte of frames at 1920x1080.
constexpr int kMaxFrames = 120;

std::vector<QImage> decodeInto(const QString &path)
{
    h264Decoder decoder(path, h264Decoder::PreferH264DecodeParams(false));
    std::vector<QImage> frames;
    const int count = qMin(decoder.getFrameCount(), kMaxFrames);
    frames.reserve(static_cast<std::size_t>(qMax(count, 0)));
    for (int i = 0; i < count; ++i)
        frames.push_back(decoder.decodeFrame(i).convertToFormat(QImage::Format_ARGB32_Premultiplied));
    return frames;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 4) {
        std::fputs("usage: kel_encoder_alone VIDEO FPS OUTPUT.mp4\n", stderr);
        return 2;
    }
    const std::vector<QImage> frames = decodeInto(arguments.at(1));
    if (frames.empty()) {
        std::fputs("kel_encoder_alone: the video has no frames\n", stderr);
        return 1;
    }
    QElapsedTimer timer;
    timer.start();
    h264Encoder encoder({frames.front().size(), frames.front().format(), arguments.at(3), arguments.at(2).toInt(), 90});
    bool isWhole = true;
    for (std::size_t i = 0; i < frames.size(); ++i)
        isWhole = isWhole && encoder.addFrame(i, frames[i]);
    if (!encoder.close() || !isWhole) {
        std::fprintf(stderr, "kel_encoder_alone: %s\n", qPrintable(encoder.errorString()));
        return 1;
    }
    std::printf("encoder_alone\t%.2f\tframes/s\n",
                1000.0 * static_cast<double>(frames.size()) / static_cast<double>(timer.elapsed()));
    return 0;
}
