#pragma once

#include "audio/capture/CaptureDependencies.h"

#include <QThread>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace kel
{

class CaptureFormat;

/// Measures the level of a default device without recording it, on its own thread. Looks for a missing device once a
/// second.
class SoundLevelMonitor : public QThread
{
    Q_OBJECT

public:
    enum class State { Waiting, Listening, NoDevice };

    /// `flow`: eRender for what the computer plays, eCapture for the microphone.
    explicit SoundLevelMonitor(EDataFlow flow, const CaptureDependencies &dependencies = CaptureDependencies(),
                               QObject *parent = nullptr);
    /// Waits for the thread, which may take long if the system does not respond.
    ~SoundLevelMonitor() override;
    /// Deletes this when the thread has ended, without waiting for it. It must have been created with new.
    void endLater();

    /// Called from the owner's thread. While off, no device is open.
    void setListening(bool on);

    // From any thread.
    State state() const { return m_state; }
    /// The peak since the last call; 1.0 is full scale.
    float takePeak() { return m_peak.exchange(0); }

    /// The peak of `size` bytes of sound.
    static float peakOf(const CaptureFormat &format, const char *data, qint64 size);

protected:
    void run() override;

private:
    void requestEnd();
    bool waitUntilWanted();
    void listen();
    bool isWanted() const;

    const EDataFlow m_flow;
    const CaptureDependencies m_dependencies;
    std::atomic<State> m_state{State::Waiting};
    std::atomic<float> m_peak{0};

    mutable std::mutex m_mutex; // guards the next two
    bool m_isWanted = false;
    bool m_isEnding = false;
    std::condition_variable m_changed;
};

} // namespace kel
