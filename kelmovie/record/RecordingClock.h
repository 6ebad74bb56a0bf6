#pragma once

#include <QtGlobal>

#include <functional>
#include <utility>

namespace kel
{

/// Measures how long a recording has run, without its pauses.
class RecordingClock
{
public:
    /// Milliseconds since the epoch.
    using TimeSource = std::function<qint64()>;

    explicit RecordingClock(TimeSource now)
        : m_now(std::move(now))
    {
    }

    void start()
    {
        m_startMs = m_now();
        m_pausedTotalMs = 0;
    }
    void pause()
    {
        m_pauseStartMs = m_now();
        m_isPaused = true;
    }
    /// Ends a pause; without one, nothing happens.
    void resume()
    {
        if (std::exchange(m_isPaused, false))
            m_pausedTotalMs += m_now() - m_pauseStartMs;
    }

    bool isPaused() const { return m_isPaused; }
    qint64 recordedMs() const { return (m_isPaused ? m_pauseStartMs : m_now()) - m_startMs - m_pausedTotalMs; }
    qint64 now() const { return m_now(); }

private:
    const TimeSource m_now;
    bool m_isPaused = false;
    qint64 m_startMs = 0;
    qint64 m_pausedTotalMs = 0;
    qint64 m_pauseStartMs = 0;
};

} // namespace kel
