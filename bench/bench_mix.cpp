// Speed change and mixing of a long recording's sound, compared with the ffmpeg program. Measures CPU time, which other
// work on the machine disturbs least. usage: kel_bench_mix [SECONDS]

#include "Figure.h"
#include "audio/processing/KelAudioSpeedProcessor.h"
#include "avcodec/audio/MixAudioVideoTracks.h"
#include "avcodec/mp4/h264Encoder.h"
#include "recording/wav/WavHeader.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cmath>
#include <functional>
#include <random>

using namespace kel;

namespace
{

constexpr int kRate = 48'000;

double cpuSeconds(int who)
{
    rusage usage{};
    getrusage(who, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

/// Similar to speech: noise in syllables, with pauses.
bool writeSound(const QString &path, int seconds)
{
    WavHeader header = WavHeader::pcm(kRate, 2, 32);
    header.formatTag = WavHeader::kIeeeFloat;
    header.setDataSize(qint64(seconds) * kRate * 8);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(header.toBytes()) != WavHeader::kSize)
        return false;
    std::minstd_rand random(1);
    std::normal_distribution<float> noise(0.0F, 0.1F);
    float smooth = 0;
    std::vector<float> second(2 * kRate);
    for (int s = 0; s < seconds; ++s) {
        for (int i = 0; i < kRate; ++i) {
            const float syllable = s % 5 < 3 ? std::fabs(std::sin(float(i) * 12.0F / kRate)) : 0.0F;
            smooth += (noise(random) - smooth) * 0.2F;
            second[size_t(2 * i)] = second[size_t(2 * i) + 1] = smooth * syllable;
        }
        const auto bytes = qint64(second.size() * sizeof(float));
        if (file.write(reinterpret_cast<const char *>(second.data()), bytes) != bytes)
            return false;
    }
    return true;
}

bool writeVideo(const QString &path, int seconds)
{
    constexpr int kFps = 25;
    h264Encoder encoder({QSize(64, 48), QImage::Format_RGB32, path, kFps, 50});
    QImage image(64, 48, QImage::Format_RGB32);
    image.fill(Qt::darkCyan);
    for (int i = 0; i < seconds * kFps; ++i)
        encoder.addFrame(quint64(i), image);
    return encoder.close();
}

bool compare(const QString &name, const std::function<bool()> &ours, const QStringList &reference)
{
    const double before = cpuSeconds(RUSAGE_SELF);
    if (!ours())
        return false;
    const double mine = cpuSeconds(RUSAGE_SELF) - before;
    const double childrenBefore = cpuSeconds(RUSAGE_CHILDREN);
    if (QProcess::execute("ffmpeg", QStringList{"-v", "error", "-y", "-threads", "1"} + reference) != 0)
        return false;
    const double other = cpuSeconds(RUSAGE_CHILDREN) - childrenBefore;
    printFigure(name + "_cpu", mine, "s");
    printFigure(name + "_cpu_of_ffmpeg", other, "s");
    printFigure(name + "_ratio", mine / other, "");
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 3'600;
    const QTemporaryDir dir;
    const QString system = dir.filePath("system.wav");
    const QString microphone = dir.filePath("microphone.wav");
    const QString video = dir.filePath("video.mp4");
    const QString out = dir.filePath("out.wav");
    const QString movie = dir.filePath("out.mp4");
    if (seconds < 1 || !writeSound(system, seconds) || !QFile::link(system, microphone) || !writeVideo(video, seconds))
        return 1;
    const auto change = [&](double speed) { return KelAudioSpeedProcessor().processAudio(system, speed, out); };
    AudioTrack first;
    first.path = system;
    AudioTrack second;
    second.path = microphone;
    const auto resampled = [&](int rate) {
        return QStringList{"-i",   system,      "-af", QString("asetrate=%1,aresample=48000").arg(rate),
                           "-c:a", "pcm_s16le", out};
    };
    const QStringList inputs{"-i", video, "-i", system, "-i", microphone};
    const QString filter = "[1:a][2:a]amix=inputs=2:normalize=0,alimiter=level=0";
    const QStringList coding{"-filter_complex", filter, "-c:v", "copy", "-c:a", "aac", "-b:a", "192k"};
    const bool isMeasured = compare(
                                "speed_2", [&] { return change(2.0); }, resampled(96'000)) &&
                            compare(
                                "speed_half", [&] { return change(0.5); }, resampled(24'000)) &&
                            compare(
                                "mix_to_wav",
                                [&] {
                                    return MixAudioVideoTracks(video, {first, second}, out);
                                },
                                inputs + QStringList{"-filter_complex", filter, out}) &&
                            compare(
                                "mix_to_mp4",
                                [&] {
                                    return MixAudioVideoTracks(video, {first, second}, movie);
                                },
                                inputs + coding + QStringList{"-movflags", "faststart", movie});
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    printFigure("mix_peak_memory", double(usage.ru_maxrss) / 1024, "MiB");
    return isMeasured ? 0 : 1;
}
