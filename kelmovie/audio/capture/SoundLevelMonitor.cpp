#include "audio/capture/SoundLevelMonitor.h"

#include "audio/capture/CaptureDevice.h"
#include "audio/capture/CaptureFormat.h"
#include "audio/capture/DeleteWhenFinished.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>

namespace kel
{

namespace
{

constexpr std::chrono::seconds kSearchInterval(1);

template <typename Sample>
float peakOfSamples(const char *data, qint64 size)
{
    double peak = 0;
    for (qint64 at = 0; at + qint64(sizeof(Sample)) <= size; at += qint64(sizeof(Sample))) {
        Sample sample;
        std::memcpy(&sample, data + at, sizeof sample);
        peak = std::max(peak, std::fabs(double(sample))); // ignores NaN
    }
    if constexpr (std::numeric_limits<Sample>::is_integer)
        peak /= -double(std::numeric_limits<Sample>::min());
    return float(peak);
}

/// For 24-bit samples; ignores their lowest byte, which no meter shows.
float peakOf24Bits(const char *data, qint64 size)
{
    float peak = 0;
    for (qint64 at = 0; at + 3 <= size; at += 3)
        peak = std::max(peak, peakOfSamples<qint16>(data + at + 1, 2));
    return peak;
}

} // namespace

SoundLevelMonitor::SoundLevelMonitor(EDataFlow flow, const CaptureDependencies &dependencies, QObject *parent)
    : QThread(parent)
    , m_flow(flow)
    , m_dependencies(dependencies)
{
}

SoundLevelMonitor::~SoundLevelMonitor()
{
    requestEnd();
    wait();
}

void SoundLevelMonitor::endLater()
{
    requestEnd();
    deleteWhenFinished(this);
}

void SoundLevelMonitor::requestEnd()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isEnding = true;
    }
    m_changed.notify_all();
}

void SoundLevelMonitor::setListening(bool on)
{
    {
        const std::lock_guard lock(m_mutex);
        m_isWanted = on;
    }
    m_changed.notify_all();
    if (on && !isRunning())
        start(LowPriority);
}

float SoundLevelMonitor::peakOf(const CaptureFormat &format, const char *data, qint64 size)
{
    const WavHeader header = format.wavHeader();
    if (header.formatTag == WavHeader::kIeeeFloat)
        return header.bitsPerSample == 64 ? peakOfSamples<double>(data, size) : peakOfSamples<float>(data, size);
    switch (header.bitsPerSample) {
    case 16:
        return peakOfSamples<qint16>(data, size);
    case 24:
        return peakOf24Bits(data, size);
    case 32:
        return peakOfSamples<qint32>(data, size);
    default:
        return 0;
    }
}

void SoundLevelMonitor::run()
{
    const bool isInitialized = SUCCEEDED(CoInitialize(nullptr));
    while (waitUntilWanted())
        listen();
    if (isInitialized)
        CoUninitialize();
}

/// False when the thread has to end.
bool SoundLevelMonitor::waitUntilWanted()
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_isWanted || m_isEnding; });
    return !m_isEnding;
}

bool SoundLevelMonitor::isWanted() const
{
    const std::lock_guard lock(m_mutex);
    return m_isWanted && !m_isEnding;
}

void SoundLevelMonitor::listen()
{
    CaptureDevice device(m_dependencies, m_flow);
    if (device.open() != CaptureDevice::Failure::None || device.start() != CaptureDevice::Failure::None) {
        m_state = State::NoDevice;
        std::unique_lock lock(m_mutex);
        m_changed.wait_for(lock, kSearchInterval, [this] { return !m_isWanted || m_isEnding; });
        return;
    }
    m_state = State::Listening;
    CaptureDevice::Result result = CaptureDevice::Result::Empty;
    while (isWanted() && result != CaptureDevice::Result::Gone) {
        CaptureDevice::Packet packet;
        result = device.acquire(&packet);
        if (result == CaptureDevice::Result::Packet) {
            if (packet.data) {
                const float peak = peakOf(device.format(), packet.data, packet.size);
                float known = m_peak;
                while (peak > known && !m_peak.compare_exchange_weak(known, peak)) {
                }
            }
            device.release();
        } else if (result == CaptureDevice::Result::Empty) {
            device.wait();
        }
    }
    device.stop();
    m_state = State::Waiting;
}

} // namespace kel
