#include "SceneText.h"

QStringList SceneText::code()
{
    return QString::fromLatin1(R"code(#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

namespace aurora {

/// One sample of the sky as the camera saw it.
struct Sample {
    std::uint64_t takenAtUs = 0;
    float brightness = 0.0f;
    float hue = 184.5f;
    bool isClipped = false;
};

/// A queue between the camera thread and the painter.
/// One writer, one reader, no locks, no allocation.
template <std::size_t Capacity = 1024>
class SampleQueue
{
    static_assert((Capacity & (Capacity - 1)) == 0, "a power of two");

public:
    bool push(const Sample &sample) noexcept
    {
        const auto tail = m_tail.load(std::memory_order_relaxed);
        const auto head = m_head.load(std::memory_order_acquire);
        if (tail - head == Capacity) {
            ++m_dropped; // the painter is late: keep the old ones
            return false;
        }
        m_samples[tail & (Capacity - 1)] = sample;
        m_tail.store(tail + 1, std::memory_order_release);
        return true;
    }

    std::optional<Sample> pop() noexcept
    {
        const auto head = m_head.load(std::memory_order_relaxed);
        if (head == m_tail.load(std::memory_order_acquire))
            return std::nullopt;
        Sample sample = m_samples[head & (Capacity - 1)];
        m_head.store(head + 1, std::memory_order_release);
        return sample;
    }

    std::size_t dropped() const noexcept { return m_dropped; }

private:
    std::array<Sample, Capacity> m_samples{};
    alignas(64) std::atomic<std::size_t> m_head{0};
    alignas(64) std::atomic<std::size_t> m_tail{0};
    std::size_t m_dropped = 0;
};

/// Smooths brightness so that a passing cloud is no aurora.
class Smoother
{
public:
    explicit Smoother(float weight = 0.125f) : m_weight(weight) {}

    float add(float value)
    {
        m_mean += m_weight * (value - m_mean);
        return m_mean;
    }

private:
    float m_weight;
    float m_mean = 0.0f;
};

inline const char *describe(float brightness)
{
    if (brightness > 0.85f) return "corona overhead";
    if (brightness > 0.40f) return "curtains in the north";
    if (brightness > 0.05f) return "a faint arc";
    return "stars only";
}

} // namespace aurora
)code")
        .split('\n');
}

QStringList SceneText::files()
{
    return {"aurora",           "  src",       "    camera.cpp", "    camera.h", "    painter.cpp", "    painter.h",
            "    samples.h",    "    sky.cpp", "    sky.h",      "  tests",      "    queue.cpp",   "    smoother.cpp",
            "  CMakeLists.txt", "  README.md"};
}

QVector<SceneText::TerminalLine> SceneText::session()
{
    const auto typed = [](const char *text) { return TerminalLine{true, QString::fromLatin1(text)}; };
    const auto output = [](const char *text) { return TerminalLine{false, QString::fromLatin1(text)}; };
    return {typed("cmake --build build --target aurora"),
            output("[1/6] Building CXX object camera.cpp.o"),
            output("[2/6] Building CXX object sky.cpp.o"),
            output("[3/6] Building CXX object painter.cpp.o"),
            output("[4/6] Building CXX object smoother.cpp.o"),
            output("[5/6] Linking CXX static library libsky.a"),
            output("[6/6] Linking CXX executable aurora"),
            typed("ctest --test-dir build"),
            output("1/3 queue ............... Passed  0.02 s"),
            output("2/3 smoother ............ Passed  0.01 s"),
            output("3/3 sky ................. Passed  0.11 s"),
            output("100% tests passed, 0 failed out of 3"),
            typed("./build/aurora --night tromso-0417"),
            output("23:41:07  a faint arc              0.11"),
            output("23:52:30  curtains in the north    0.57"),
            output("00:03:12  corona overhead          0.93"),
            output("00:19:48  curtains in the north    0.48"),
            typed("git commit -am 'Keep the old samples when late'"),
            output("[main 4f1c2aa] Keep the old samples when late"),
            output(" 2 files changed, 31 insertions(+), 9 deletions(-)")};
}
