// kel_bench_hook: how long after a key goes down and up, or the wheel turns, the hook's callback runs, on the display
// that $DISPLAY names or on this Windows. Prints one "name<TAB>value<TAB>unit" a line.
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

constexpr int Rounds = 1000;

/// Lets the left Shift key go down or up, as a program does that presses keys for somebody.
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
        m_input.keyWithoutAnswer(50, down); // of the evdev rules
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
    std::atomic<Clock::rep> heard{0};
    RecordingHook hook;
    hook.onEvent = [&] { heard = Clock::now().time_since_epoch().count(); };
    hook.setHookType(KelKeyMouseHook::Keyboard);
    if (!KelKeyMouseHook::errorString().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(KelKeyMouseHook::errorString()));
        return 1;
    }
    Key key;
    std::vector<double> times;
    for (int round = 0; round < 2 * Rounds; ++round) {
        const Clock::time_point start = Clock::now();
        key.press(round % 2 == 0);
        if (hook.take(1).isEmpty()) {
            std::fprintf(stderr, "event %d was not heard\n", round);
            return 1;
        }
        const Clock::time_point end{Clock::duration(heard)};
        times.push_back(std::chrono::duration<double, std::micro>(end - start).count());
        QThread::usleep(500); // so that each finds all asleep, as a person's keys do
    }
    std::sort(times.begin(), times.end());
    printFigure("hook: a key is heard, median", times[times.size() / 2], "us");
    printFigure("hook: a key is heard, p99", times[times.size() * 99 / 100], "us");
    return 0;
}
