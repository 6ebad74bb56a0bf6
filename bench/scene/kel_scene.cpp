// Shows the scene on $DISPLAY until it is stopped, for benchmarks and the demo to record.

#include "FrameMark.h"
#include "SceneRenderer.h"
#include "SceneWindow.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QPainter>

#include <chrono>
#include <cstdio>
#include <thread>

namespace
{

struct Options {
    QSize size; ///< empty: the whole screen
    int fps = 30;
    double seconds = 0; ///< 0: until it is stopped
    bool isStill = false;
};

Options readOptions(const QGuiApplication &application)
{
    const QCommandLineOption size("size", "size of the scene; default: the screen", "WxH");
    const QCommandLineOption fps("fps", "frames a second", "N", "30");
    const QCommandLineOption seconds("seconds", "exit after this time; default: never", "S", "0");
    const QCommandLineOption still("still", "show frame 0 and nothing else");
    QCommandLineParser parser;
    parser.setApplicationDescription("Shows a scripted desktop on $DISPLAY.");
    parser.addOptions({size, fps, seconds, still});
    parser.addHelpOption();
    parser.process(application);

    Options options;
    const QStringList sides = parser.value(size).split('x');
    if (sides.size() == 2)
        options.size = QSize(sides.at(0).toInt(), sides.at(1).toInt());
    options.fps = qBound(1, parser.value(fps).toInt(), 1000);
    options.seconds = parser.value(seconds).toDouble();
    options.isStill = parser.isSet(still);
    return options;
}

bool showFrame(SceneWindow &window, const SceneRenderer &scene, int frame, const QRegion &region)
{
    QPainter painter(&window.canvas());
    scene.paint(painter, frame, region);
    painter.end();
    return window.show(region);
}

} // namespace

int main(int argc, char **argv)
{
    using Clock = std::chrono::steady_clock;
    qputenv("QT_QPA_PLATFORM", "offscreen"); // Qt paints, XCB shows
    const QGuiApplication application(argc, argv);
    const Options options = readOptions(application);
    SceneWindow window(options.size);
    if (!window.errorString().isEmpty()) {
        std::fprintf(stderr, "kel_scene: %s\n", qPrintable(window.errorString()));
        return 1;
    }
    const SceneRenderer scene(window.canvas().size());
    if (!showFrame(window, scene, 0, scene.changed(0)))
        return 1;
    std::puts("ready");
    std::fflush(stdout);

    const Clock::time_point start = Clock::now();
    const std::chrono::duration<double> frameTime(1.0 / options.fps);
    const std::chrono::duration<double> limit(options.seconds > 0 ? options.seconds : 1e9);
    for (int frame = 0; Clock::now() - start < limit;) {
        // A late frame is skipped, because the clock goes on.
        const int next = qMax(frame + 1, static_cast<int>((Clock::now() - start) / frameTime));
        std::this_thread::sleep_until(start + std::chrono::duration_cast<Clock::duration>(next * frameTime));
        if (options.isStill) {
            frame = next;
            continue;
        }
        QRegion region;
        for (; frame < next; ++frame)
            region += scene.changed((frame + 1) % FrameMark::kLargestFrame);
        if (!showFrame(window, scene, frame % FrameMark::kLargestFrame, region))
            return 1;
    }
    return 0;
}
