// kel_bench_record_input: what it costs to record pointer and keys of the screen that $DISPLAY names.
// Prints one "name<TAB>value<TAB>unit" a line.
#include "Figure.h"
#include "keymouse/XTestInput.h"
#include "record/KelRecordKeyboardTrack.h"
#include "record/KelRecordMouseTrack.h"
#include "record/KelRecordTrackManager.h"
#include "recording/KelRecordingFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <vector>

namespace
{

const QRect Screen(0, 0, 1920, 1080);
constexpr int Fps = 60;
constexpr int Ticks = 2000;
constexpr int Seconds = 10;
constexpr int LetterA = 38; // of the evdev rules

/// Silence, but for what the engine itself has to complain about.
void showCriticalOnly(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtCriticalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

/// Of one frame of both tracks, after `prepare`.
double medianMs(KelRecordTrack &mouse, KelRecordTrack &keyboard, const std::function<void(int)> &prepare)
{
    std::vector<double> times;
    QElapsedTimer timer;
    for (int tick = 0; tick < Ticks; ++tick) {
        prepare(tick);
        timer.start();
        mouse.recordFrame(tick);
        keyboard.recordFrame(tick);
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + Ticks / 2, times.end());
    return times[Ticks / 2];
}

/// Share of one core of this process while the pointer moves 60 times and six keys are typed each second.
double sharePercent(XTestInput &input, const QString &directory, bool withTracks)
{
    KelRecordTrackManager::Config config;
    config.directory = directory;
    config.fps = Fps;
    config.screen = false;
    config.mouse = withTracks;
    config.keyboard = withTracks;
    KelRecordTrackManager manager(Screen, config);
    manager.startRecording();
    QTimer hand;
    int step = 0;
    QObject::connect(&hand, &QTimer::timeout, [&] {
        input.move(100 + step % 1000, 100 + step % 700);
        if (++step % 10 == 0)
            input.tap(LetterA);
    });
    hand.setTimerType(Qt::PreciseTimer);
    hand.start(1000 / Fps);
    const std::clock_t start = std::clock();
    QEventLoop loop;
    QTimer::singleShot(Seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
    return 100.0 * double(std::clock() - start) / CLOCKS_PER_SEC / Seconds;
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    qInstallMessageHandler(showCriticalOnly);
    const QTemporaryDir directory;
    XTestInput input;
    {
        QDir().mkpath(directory.filePath(KelRecordingFiles::kMouseDir));
        KelRecordMouseTrack mouse(Screen, directory.filePath(KelRecordingFiles::kMouseDir));
        KelRecordKeyboardTrack keyboard(Screen, directory.filePath(KelRecordingFiles::kKeyboardDir));
        mouse.startRecording();
        keyboard.startRecording();
        printFigure("record tick, pointer at rest", medianMs(mouse, keyboard, [](int) {}), "ms");
        printFigure("record tick, pointer moves and a key is typed",
                    medianMs(mouse, keyboard,
                             [&input](int tick) {
                                 input.move(100 + tick % 1000, 100);
                                 input.tap(LetterA);
                             }),
                    "ms");
        mouse.stopRecording(Ticks, 0);
        keyboard.stopRecording(Ticks, 0);
    }
    const double without = sharePercent(input, directory.filePath("without"), false);
    const double with = sharePercent(input, directory.filePath("with"), true);
    printFigure("record input at 60 a second: share of a core", with - without, "%");
    return 0;
}
