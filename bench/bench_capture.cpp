// kel_bench_capture: what it costs to look at the screen that $DISPLAY names (1920x1080 or larger).
// Prints one "name<TAB>value<TAB>unit" a line; medians.
#include "Figure.h"
#include "screen/KelScreenManager.h"
#include "support/X11Painter.h"

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

const QRect screenRect(0, 0, 1920, 1080);

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

/// Share of one core that this process uses while it asks 60 times a second about a screen that does not change.
double idleSharePercent(KelScreenStreamer &streamer)
{
    constexpr int ticks = 300;
    const std::clock_t start = std::clock();
    for (int i = 0; i < ticks; ++i) {
        streamer.hasFrameChanged();
        QThread::usleep(1000000 / 60);
    }
    return 100.0 * double(std::clock() - start) / CLOCKS_PER_SEC / (ticks / 60.0);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const std::unique_ptr<KelScreenStreamer> streamer(KelScreenManager::instance()->createScreenStreamer(screenRect));
    QImage image;
    if (!streamer->captureTo(image)) {
        std::fprintf(stderr, "%s\n", qPrintable(streamer->errorString()));
        return 1;
    }

    X11Painter painter;
    quint32 color = 0xff000000;
    const auto draw = [&](int count, const QSize &size) {
        for (int i = 0; i < count; ++i)
            painter.fill(painter.root(), {QPoint(i % 16 * 110, i / 16 * 30), size}, color++);
        painter.sync();
        streamer->hasFrameChanged();
    };
    const auto capture = [&] { streamer->captureTo(image); };
    const auto forget = [&] {
        image = QImage(image.size(), image.format());
        image.fill(Qt::black);
    };

    printFigure("capture 1920x1080, image new", medianMs(100, forget, capture), "ms");
    printFigure("capture 1920x1080, all changed",
                medianMs(
                    100, [&] { draw(1, screenRect.size()); }, capture),
                "ms");
    printFigure("capture 1 change of 64x20",
                medianMs(
                    500,
                    [&] {
                        draw(1, {64, 20});
                    },
                    capture),
                "ms");
    printFigure("capture 64 changes of 64x20",
                medianMs(
                    200,
                    [&] {
                        draw(64, {64, 20});
                    },
                    capture),
                "ms");
    printFigure("capture 400 changes of 64x20",
                medianMs(
                    200,
                    [&] {
                        draw(400, {64, 20});
                    },
                    capture),
                "ms");
    printFigure("capture 640x360 changed",
                medianMs(
                    200,
                    [&] {
                        draw(1, {640, 360});
                    },
                    capture),
                "ms");
    const auto ask = [&] { streamer->hasFrameChanged(); };
    printFigure("question, nothing changed",
                medianMs(
                    10000, [] {}, ask) *
                    1000,
                "us");
    const auto drawUnasked = [&] {
        painter.fill(painter.root(), {0, 0, 64, 20}, color++);
        painter.sync();
    };
    printFigure("question, something changed", medianMs(1000, drawUnasked, ask) * 1000, "us");
    capture();
    printFigure("still screen at 60 questions a second", idleSharePercent(*streamer), "% of a core");
    return 0;
}
