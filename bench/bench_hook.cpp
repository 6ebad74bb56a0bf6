// kel_bench_hook: the latency between a key press or release and the hook's callback, on the X server of $DISPLAY or on
// Windows. Prints "name<TAB>value<TAB>unit" lines.
#include "Figure.h"
#include "keymouse/RecordingHook.h"

#ifdef _WIN32
#include <windows.h>
#else
#include "keymouse/XTestInput.h"
#endif

#include <QGuiApplication>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <vector>

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 1000;

/// Presses and releases the left Shift key by synthetic input.
class Key
{
public:
    void press(bool down)
    {
#ifdef _WIN32
        INPUT input{};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = VK_LSHIFT;
        input.ki.dwFlags = down ? 0 : KEYEVENTF_KEYUP;
        SendInput(1, &input, sizeof input);
#else
        m_input.keyWithoutAnswer(50, down); // keycode of the evdev rules
#endif
    }

#ifndef _WIN32
private:
    XTestInput m_input;
#endif
};

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    std::atomic<Clock::rep> receivedAt{0};
    RecordingHook hook;
    hook.onEvent = [&] { receivedAt = Clock::now().time_since_epoch().count(); };
    hook.setHookType(KelKeyMouseHook::Keyboard);
    if (!KelKeyMouseHook::errorString().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(KelKeyMouseHook::errorString()));
        return 1;
    }
    Key key;
    std::vector<double> times;
    for (int round = 0; round < 2 * kRounds; ++round) {
        const Clock::time_point start = Clock::now();
        key.press(round % 2 == 0);
        if (hook.take(1).isEmpty()) {
            std::fprintf(stderr, "event %d was not received\n", round);
            return 1;
        }
        const Clock::time_point end{Clock::duration(receivedAt)};
        times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
        QThread::usleep(500); // between real keys all threads go to sleep
    }
    std::sort(times.begin(), times.end());
    printFigure("hook: key latency, median", times[times.size() / 2], "us");
    printFigure("hook: key latency, p99", times[times.size() * 99 / 100], "us");
    return 0;
}
