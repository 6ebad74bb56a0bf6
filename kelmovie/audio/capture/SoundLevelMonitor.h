#pragma once

#include "audio/capture/CaptureDependencies.h"

#include <QThread>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace kel
{

class CaptureFormat;

/// Listens how loud a default device is, without recording it, on a thread of its own. A device that is not there, or
/// goes away, is looked for once a second.
class SoundLevelMonitor : public QThread
{
    Q_OBJECT

public:
    enum class State { Waiting, Listening, NoDevice };

    /// `flow`: eRender for what the computer plays, eCapture for the microphone.
    explicit SoundLevelMonitor(EDataFlow flow, const CaptureDependencies &seams = CaptureDependencies(),
                               QObject *parent = nullptr);
    /// Waits for the thread, which the system may hold up for seconds.
    ~SoundLevelMonitor() override;

    /// From the owner's thread. While off, no device is open.
    void setListening(bool on);

    // From any thread.
    State state() const { return m_state; }
    /// The largest magnitude since the last call; 1.0 is full scale.
    float takePeak() { return m_peak.exchange(0); }

    /// The largest magnitude of some sound.
    static float peakOf(const CaptureFormat &format, const char *data, qint64 size);

protected:
    void run() override;

private:
    bool waitUntilWanted();
    void listen();
    bool isWanted() const;

    const EDataFlow m_flow;
    const CaptureDependencies m_seams;
    std::atomic<State> m_state{State::Waiting};
    std::atomic<float> m_peak{0};

    mutable std::mutex m_mutex; // guards the next two
    bool m_isWanted = false;
    bool m_isEnding = false;
    std::condition_variable m_changed;
};

} // namespace kel
