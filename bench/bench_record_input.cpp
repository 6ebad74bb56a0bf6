// kel_bench_record_input: the cost of recording pointer and keys on $DISPLAY.
// Prints "name<TAB>value<TAB>unit" lines.
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

const QRect kScreen(0, 0, 1920, 1080);
constexpr int kFps = 60;
constexpr int kTicks = 2000;
constexpr int kSeconds = 10;
constexpr int kLetterA = 38; // keycode of the evdev rules

/// Suppresses everything but critical messages.
void showCriticalOnly(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtCriticalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
}

/// The time of one frame of both tracks, after `prepare`.
double medianMs(KelRecordTrack &mouse, KelRecordTrack &keyboard, const std::function<void(int)> &prepare)
{
    std::vector<double> times;
    QElapsedTimer timer;
    for (int tick = 0; tick < kTicks; ++tick) {
        prepare(tick);
        timer.start();
        mouse.recordFrame(tick);
        keyboard.recordFrame(tick);
        times.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    std::nth_element(times.begin(), times.begin() + kTicks / 2, times.end());
    return times[kTicks / 2];
}

/// CPU usage of this process, as a share of one core, with 60 pointer moves and six keys per second.
double sharePercent(XTestInput &input, const QString &directory, bool withTracks)
{
    KelRecordTrackManager::Config config;
    config.directory = directory;
    config.fps = kFps;
    config.screen = false;
    config.mouse = withTracks;
    config.keyboard = withTracks;
    KelRecordTrackManager manager(kScreen, config);
    manager.startRecording();
    QTimer hand;
    int step = 0;
    QObject::connect(&hand, &QTimer::timeout, [&] {
        input.move(100 + step % 1000, 100 + step % 700);
        if (++step % 10 == 0)
            input.tap(kLetterA);
    });
    hand.setTimerType(Qt::PreciseTimer);
    hand.start(1000 / kFps);
    const std::clock_t start = std::clock();
    QEventLoop loop;
    QTimer::singleShot(kSeconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
    return 100.0 * double(std::clock() - start) / CLOCKS_PER_SEC / kSeconds;
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
        KelRecordMouseTrack mouse(kScreen, directory.filePath(KelRecordingFiles::kMouseDir));
        KelRecordKeyboardTrack keyboard(kScreen, directory.filePath(KelRecordingFiles::kKeyboardDir));
        mouse.startRecording();
        keyboard.startRecording();
        printFigure("record tick, pointer at rest", medianMs(mouse, keyboard, [](int) {}), "ms");
        printFigure("record tick, pointer moves and a key is typed",
                    medianMs(mouse, keyboard,
                             [&input](int tick) {
                                 input.move(100 + tick % 1000, 100);
                                 input.tap(kLetterA);
                             }),
                    "ms");
        mouse.stopRecording(kTicks, 0);
        keyboard.stopRecording(kTicks, 0);
    }
    const double without = sharePercent(input, directory.filePath("without"), false);
    const double with = sharePercent(input, directory.filePath("with"), true);
    printFigure("record input at 60 a second: share of a core", with - without, "%");
    return 0;
}
