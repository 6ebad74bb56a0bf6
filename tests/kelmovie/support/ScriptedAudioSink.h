#pragma once

#include "audio/output/AudioSink.h"

#include <QAudioFormat>
#include <QByteArray>

#include <algorithm>
#include <functional>
#include <memory>

/// A sound device that runs on the clock of the test, and its faults.
struct SoundScript {
    std::function<qint64()> nowMs;
    double pace = 1.0;      ///< ms of sound that the device plays per ms
    int leadMs = 0;         ///< of sound that the device buffers before playing it
    bool isMissing = false; ///< no sink starts
    double volume = -1.0;   ///< set last
    int starts = 0;
    int alive = 0;
    std::function<void()> closing;           ///< called when a sink is about to be destroyed
    class ScriptedAudioSink *last = nullptr; ///< the sink that was created last
};

class ScriptedAudioSink : public kel::AudioSink
{
public:
    static constexpr int kBufferMs = 200;

    ScriptedAudioSink(std::shared_ptr<SoundScript> script, const QAudioFormat &format)
        : m_script(std::move(script))
        , m_format(format)
    {
        m_script->last = this;
        ++m_script->alive;
    }
    ~ScriptedAudioSink() override
    {
        if (m_script->closing)
            m_script->closing();
        --m_script->alive;
    }

    bool start() override
    {
        ++m_script->starts;
        m_isStarted = !m_script->isMissing;
        return m_isStarted;
    }
    void stop() override
    {
        m_isStarted = false;
        m_written.clear();
    }
    QAudio::Error error() const override { return m_error; }
    int bytesFree() const override
    {
        return m_isStarted ? m_format.bytesForDuration(kBufferMs * 1000) - bytesBuffered() : 0;
    }
    int bytesBuffered() const override { return m_written.size() - taken(); }
    qint64 write(const char *bytes, qint64 count) override
    {
        if (m_written.isEmpty())
            m_startedMs = m_script->nowMs();
        m_written.append(bytes, int(count));
        return count;
    }
    void setVolume(double volume) override { m_script->volume = volume; }

    /// Everything written since the last start.
    const QByteArray &written() const { return m_written; }
    /// Number of these bytes that were heard.
    int heard() const
    {
        return m_written.isEmpty() ? 0 : bytesIn(double(m_script->nowMs() - m_startedMs) * m_script->pace);
    }
    /// The device plays nothing for `ms`, as in a buffer underrun.
    void lose(qint64 ms) { m_startedMs += ms; }
    void fail(QAudio::Error error)
    {
        m_error = error;
        m_isStarted = false;
        emit stateChanged(QAudio::StoppedState);
    }

private:
    int bytesIn(double ms) const { return m_format.bytesForDuration(qint64(ms * 1000)); }
    int taken() const { return std::min(heard() + bytesIn(m_script->leadMs), m_written.size()); }

    const std::shared_ptr<SoundScript> m_script;
    const QAudioFormat m_format;
    bool m_isStarted = false;
    QAudio::Error m_error = QAudio::NoError;
    QByteArray m_written;
    qint64 m_startedMs = 0;
};

inline kel::AudioSink::Factory scriptedSinks(const std::shared_ptr<SoundScript> &script)
{
    return [script](const QAudioFormat &format) { return std::make_unique<ScriptedAudioSink>(script, format); };
}
