// Flashes $DISPLAY and beeps on the sound server's default output, both at the same moment, once a second until it is
// stopped: for measuring whether a recording keeps picture and sound together. Says "ready" when it runs, and then the
// time of each beep on the steady clock, in seconds.

#include "support/x11/X11Painter.h"

#include <pulse/error.h>
#include <pulse/simple.h>

#include <QCoreApplication>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kRate = 48000;
constexpr int kBlock = kRate / 500; // a flash comes at most this much late
constexpr int kBeepSamples = kRate / 10;
constexpr double kBeepHertz = 1000;
constexpr std::chrono::milliseconds kFlash(500); // seen even at ten times the speed

[[noreturn]] void giveUp(const char *what, const char *why)
{
    std::fprintf(stderr, "kel_flash_beep: %s: %s\n", what, why);
    std::exit(1);
}

std::unique_ptr<pa_simple, decltype(&pa_simple_free)> openOutput()
{
    const pa_sample_spec format{PA_SAMPLE_S16LE, kRate, 1};
    // Little in advance: the shorter the way to the speakers, the better its length is known.
    const pa_buffer_attr buffer{uint32_t(-1), kRate / 20 * 2, uint32_t(-1), uint32_t(-1), uint32_t(-1)};
    int error = 0;
    pa_simple *output = pa_simple_new(nullptr, "kel_flash_beep", PA_STREAM_PLAYBACK, nullptr, "beeps", &format, nullptr,
                                      &buffer, &error);
    if (!output)
        giveUp("no sound", pa_strerror(error));
    return {output, pa_simple_free};
}

std::array<int16_t, kBlock> block(qint64 firstSample)
{
    std::array<int16_t, kBlock> samples{};
    for (int i = 0; i < kBlock; ++i) {
        const qint64 inSecond = (firstSample + i) % kRate;
        if (inSecond < kBeepSamples)
            samples[std::size_t(i)] = int16_t(20000 * std::sin(2 * M_PI * kBeepHertz * double(inSecond) / kRate));
    }
    return samples;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    X11Painter painter;
    if (!painter.isConnected())
        giveUp("no display", "set DISPLAY");
    const QRect all(QPoint(), painter.screenSize());
    const xcb_window_t window = painter.createWindow(all, qRgb(0, 0, 0));
    painter.sync();
    const auto output = openOutput();
    std::puts("ready");
    std::fflush(stdout);

    Clock::time_point flashAt = Clock::time_point::max();
    bool isLit = false;
    for (qint64 written = 0;; written += kBlock) {
        int error = 0;
        if (written % kRate == 0) {
            const pa_usec_t delay = pa_simple_get_latency(output.get(), &error);
            flashAt = Clock::now() + std::chrono::microseconds(delay);
            std::printf("%.6f\n", std::chrono::duration<double>(flashAt.time_since_epoch()).count());
            std::fflush(stdout);
        }
        const auto samples = block(written);
        if (pa_simple_write(output.get(), samples.data(), sizeof samples, &error) < 0)
            giveUp("playing failed", pa_strerror(error));
        const bool shallBeLit = Clock::now() >= flashAt && Clock::now() < flashAt + kFlash;
        if (shallBeLit != isLit) {
            painter.fill(window, all, shallBeLit ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
            painter.sync();
            isLit = shallBeLit;
        }
    }
}
