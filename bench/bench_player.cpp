// Seeking in the sound of a long recording during playback. Prints "name<TAB>value<TAB>unit" lines. Needs a sound
// server.

#include "Figure.h"

#include "audio/output/KelAmplifiedAudioPlayer.h"
#include "recording/wav/WavHeader.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <random>
#include <vector>

using namespace kel;

namespace
{

constexpr quint32 kRate = 48'000;
constexpr qint64 kMs = 3 * 3'600'000;
constexpr int kSeeks = 200;

QString makeSound(const QTemporaryDir &dir)
{
    WavHeader header = WavHeader::pcm(kRate, 2, 16);
    const qint64 bytes = kMs / 1000 * header.byteRate;
    header.setDataSize(bytes);
    QFile file(dir.filePath("sound.wav"));
    if (!file.open(QIODevice::WriteOnly) || file.write(header.toBytes()) != WavHeader::kSize ||
        !file.resize(WavHeader::kSize + bytes))
        qFatal("%s", qPrintable(file.errorString()));
    return file.fileName();
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QTemporaryDir dir;
    const QString path = makeSound(dir);
    KelAmplifiedAudioPlayer player;
    QElapsedTimer timer;
    timer.start();
    if (!player.setSource(path))
        return 1;
    player.play();
    if (!player.isPlaying())
        return 1;
    printFigure("player_open_and_play", double(timer.nsecsElapsed()) / 1e6, "ms");

    std::mt19937 random(1);
    std::uniform_int_distribution<qint64> anywhere(0, kMs - 1000);
    std::vector<double> times;
    times.reserve(kSeeks);
    for (int i = 0; i < kSeeks; ++i) {
        const qint64 target = anywhere(random);
        timer.start();
        player.seek(target); // returns when the device has sound from the new position
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
        if (!player.isPlaying())
            return 1;
        QCoreApplication::processEvents();
    }
    std::sort(times.begin(), times.end());
    printFigure("player_seek_median", times[kSeeks / 2], "ms");
    printFigure("player_seek_p95", times[kSeeks * 95 / 100], "ms");
    return 0;
}
