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
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <thread>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kRate = 48000;
constexpr int kBlock = kRate / 500;
constexpr int kBeepSamples = kRate * 4 / 10; // heard even at ten times the speed
constexpr double kBeepHertz = 1000;
constexpr std::chrono::milliseconds kFlash(400);

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

/// Paints the flashes on a thread of its own, because writing sound blocks while the sound server is busy.
class Flashes
{
public:
    Flashes(X11Painter &painter, xcb_window_t window, const QRect &area)
        : m_painter(painter)
        , m_window(window)
        , m_area(area)
        , m_thread([this] { run(); })
    {
        m_thread.detach(); // runs until the process ends
    }

    void flashAt(Clock::time_point time)
    {
        std::lock_guard lock(m_mutex);
        m_next = time;
        m_changed.notify_one();
    }

private:
    void run()
    {
        for (Clock::time_point done;;) {
            {
                std::unique_lock lock(m_mutex);
                m_changed.wait(lock, [&] { return m_next != done; });
                done = m_next;
            }
            fillAt(done, qRgb(255, 255, 255));
            fillAt(done + kFlash, qRgb(0, 0, 0));
        }
    }

    void fillAt(Clock::time_point time, QRgb color)
    {
        std::this_thread::sleep_until(time);
        m_painter.fill(m_window, m_area, color);
        m_painter.sync();
    }

    X11Painter &m_painter;
    const xcb_window_t m_window;
    const QRect m_area;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    Clock::time_point m_next;
    std::thread m_thread;
};

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

    Flashes flashes(painter, window, all);
    for (qint64 written = 0;; written += kBlock) {
        int error = 0;
        if (written % kRate == 0) {
            const pa_usec_t delay = pa_simple_get_latency(output.get(), &error);
            const Clock::time_point heardAt = Clock::now() + std::chrono::microseconds(delay);
            flashes.flashAt(heardAt);
            std::printf("%.6f\n", std::chrono::duration<double>(heardAt.time_since_epoch()).count());
            std::fflush(stdout);
        }
        const auto samples = block(written);
        if (pa_simple_write(output.get(), samples.data(), sizeof samples, &error) < 0)
            giveUp("playing failed", pa_strerror(error));
    }
}
