// kel_bench_capture: the cost of capturing the screen (1920x1080 or larger).
// Prints medians as "name<TAB>value<TAB>unit" lines.
#include "Figure.h"
#include "screen/KelScreenManager.h"
#include "support/PaintedWindow.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

namespace
{

const QRect kScreenRect(0, 0, 1920, 1080);

double medianMs(int rounds, const std::function<void()> &prepare, const std::function<void()> &measure)
{
    using Clock = std::chrono::steady_clock;
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        prepare();
        const Clock::time_point start = Clock::now();
        measure();
        times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    }
    std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
    return times[std::size_t(rounds / 2)];
}

/// CPU usage of this process, as a share of one core, while it polls an unchanged screen 60 times a second.
double idleSharePercent(KelScreenStreamer &streamer)
{
    constexpr int kTicks = 300;
    const std::clock_t start = std::clock();
    for (int i = 0; i < kTicks; ++i) {
        streamer.hasFrameChanged();
        QThread::usleep(1000000 / 60);
    }
    return 100.0 * double(std::clock() - start) / CLOCKS_PER_SEC / (kTicks / 60.0);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const std::unique_ptr<KelScreenStreamer> streamer(KelScreenManager::instance()->createScreenStreamer(kScreenRect));
    QImage image;
    if (!streamer->captureTo(image)) {
        std::fprintf(stderr, "%s\n", qPrintable(streamer->errorString()));
        return 1;
    }

    quint32 color = 0xff000000;
    std::vector<std::unique_ptr<PaintedWindow>> windows;
    const auto show = [&](int count, const QSize &size) {
        windows.clear();
        for (int i = 0; i < count; ++i)
            windows.push_back(std::make_unique<PaintedWindow>(QRect(QPoint(i % 16 * 110, i / 16 * 30), size), color));
        streamer->captureTo(image);
    };
    const auto draw = [&] {
        ++color;
        for (const auto &window : windows)
            window->paint(color);
        streamer->hasFrameChanged();
    };
    const auto capture = [&] { streamer->captureTo(image); };
    const auto clearImage = [&] {
        image = QImage(image.size(), image.format());
        image.fill(Qt::black);
    };

    printFigure("capture 1920x1080, new image", medianMs(100, clearImage, capture), "ms");
    struct Change {
        const char *name;
        int rounds, count;
        QSize size;
    };
    for (const Change &change : {Change{"capture 1920x1080, all changed", 100, 1, kScreenRect.size()},
                                 Change{"capture 1 change of 64x20", 500, 1, {64, 20}},
                                 Change{"capture 64 changes of 64x20", 200, 64, {64, 20}},
                                 Change{"capture 640x360 changed", 200, 1, {640, 360}}}) {
        show(change.count, change.size);
        printFigure(change.name, medianMs(change.rounds, draw, capture), "ms");
    }
    const auto poll = [&] { streamer->hasFrameChanged(); };
    printFigure("poll, nothing changed",
                medianMs(
                    1000, [] {}, poll) *
                    1000,
                "us");
    show(1, {64, 20});
    const auto drawOnly = [&] { windows.front()->paint(++color); };
    printFigure("poll, something changed", medianMs(200, drawOnly, poll) * 1000, "us");
    capture();
    printFigure("still screen at 60 polls a second", idleSharePercent(*streamer), "% of a core");
    return 0;
}
