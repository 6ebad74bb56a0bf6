// How fast the export encoder takes the pictures of a recording when nobody has to load or paint them: the bound for
// the speed of an export. Prints NAME<TAB>VALUE<TAB>UNIT.

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

// A gigabyte of pictures at 1920x1080.
constexpr int MaxPictures = 120;

std::vector<QImage> decodeInto(const QString &path)
{
    h264Decoder decoder(path, h264Decoder::PreferH264DecodeParams(false));
    std::vector<QImage> pictures;
    const int count = qMin(decoder.getFrameCount(), MaxPictures);
    pictures.reserve(static_cast<std::size_t>(qMax(count, 0)));
    for (int i = 0; i < count; ++i)
        pictures.push_back(decoder.decodeFrame(i).convertToFormat(QImage::Format_ARGB32_Premultiplied));
    return pictures;
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
    const std::vector<QImage> pictures = decodeInto(arguments.at(1));
    if (pictures.empty()) {
        std::fputs("kel_encoder_alone: the video has no pictures\n", stderr);
        return 1;
    }
    QElapsedTimer timer;
    timer.start();
    h264Encoder encoder(
        {pictures.front().size(), pictures.front().format(), arguments.at(3), arguments.at(2).toInt(), 90});
    bool isWhole = true;
    for (std::size_t i = 0; i < pictures.size(); ++i)
        isWhole = isWhole && encoder.addFrame(i, pictures[i]);
    if (!encoder.close() || !isWhole) {
        std::fprintf(stderr, "kel_encoder_alone: %s\n", qPrintable(encoder.errorString()));
        return 1;
    }
    std::printf("encoder_alone\t%.2f\tframes/s\n",
                1000.0 * static_cast<double>(pictures.size()) / static_cast<double>(timer.elapsed()));
    return 0;
}
