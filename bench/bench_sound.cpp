// The cost of recording system audio. Prints "name<TAB>value<TAB>unit" lines.

#include "Figure.h"
#include "audio/capture/KelSystemAudioRecord.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <sys/resource.h>

namespace
{
constexpr unsigned long kWarmUpMs = 1000;
constexpr unsigned long kMeasuredMs = 20000;

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &time) { return double(time.tv_sec) + double(time.tv_usec) / 1e6; };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}
} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication app(argc, argv);
    const QTemporaryDir directory;
    KelSystemAudioRecord record(
        directory.filePath("system_audio.wav"),
        [](const QString &problem) { qFatal("nothing is recorded: %s", qPrintable(problem)); }, nullptr);
    record.start();
    QThread::msleep(kWarmUpMs);
    QElapsedTimer timer;
    timer.start();
    const double before = cpuSeconds();
    QThread::msleep(kMeasuredMs);
    printFigure("system_audio_share_of_a_core", 100 * (cpuSeconds() - before) / (double(timer.elapsed()) / 1000), "%");
    record.stopRecording();
}
