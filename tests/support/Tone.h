#pragma once

#include "support/Sound.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QVector>

/// Sine tones, played into a sink of the private sound server and measured in a recording.
namespace Tone
{
constexpr int kRate = 48000;

/// Runs a `pactl` command; true on success.
inline bool control(const QStringList &arguments)
{
    return QProcess::execute("pactl", arguments) == 0;
}

/// Stops the process of the server without ending it ("STOP"), or has it go on ("CONT").
inline bool signalServer(const QString &signal)
{
    return QProcess::execute("sh", {"-c", QString("kill -%1 $SOUND_SERVER_PID").arg(signal)}) == 0;
}

/// Adds an output; returns its module number.
inline QString addSink(const QString &name)
{
    QProcess process;
    process.start("pactl", {"load-module", "module-null-sink", "sink_name=" + name, "norewinds=1"});
    process.waitForFinished();
    return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
}

/// Plays a tone into `sink` for `ms`, or until destruction.
class Player
{
public:
    Player(const QString &sink, double hz, int ms)
    {
        m_process.start("pacat", {"--device=" + sink, "--format=s16le", QString("--rate=%1").arg(kRate), "--channels=2",
                                  "--latency-msec=20"});
        m_process.write(Sound::make(ms / 1000.0, Sound::tone(hz, 0.5), kRate).pcm16()); // stereo
        m_process.closeWriteChannel();
        m_process.waitForStarted();
    }
    ~Player()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    bool waitForEnd() { return m_process.waitForFinished(); }

private:
    QProcess m_process;
};

/// The amplitude of a sine of `hz` in the sound.
inline double level(const QVector<float> &mono, double hz, int rate)
{
    return Sound{rate, 1, {mono.begin(), mono.end()}}.level(hz, 0, double(mono.size() + 1) / rate);
}
} // namespace Tone
