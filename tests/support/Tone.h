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

/// Makes `name` the default "sink" or "source", which PipeWire does some time after it has been asked to.
inline bool setDefault(const QString &kind, const QString &name)
{
    return control({"set-default-" + kind, name}) &&
           QProcess::execute("timeout",
                             {"20", "sh", "-c",
                              QString("until [ \"$(pactl get-default-%1)\" = %2 ]; do :; done").arg(kind, name)}) == 0;
}

/// Stops the process of the server without ending it ("STOP"), has it go on ("CONT"), or ends it ("TERM").
inline bool signalServer(const QString &signal)
{
    return QProcess::execute("sh", {"-c", QString("kill -%1 $SOUND_SERVER_PID").arg(signal)}) == 0;
}

/// Loads a module of the server; returns its number.
inline QString load(const QStringList &module)
{
    QProcess process;
    process.start("pactl", QStringList{"load-module"} + module);
    process.waitForFinished();
    return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
}

/// Adds an output; returns its module number.
inline QString addSink(const QString &name)
{
    return load({"module-null-sink", "sink_name=" + name, "norewinds=1"});
}

/// A tone of half of full scale in `sink`, until destruction. PulseAudio makes it itself, so that it has no gaps on a
/// busy machine. PipeWire is sent twenty seconds of it.
class Player
{
public:
    Player(const QString &sink, int hz)
        : m_module(load({"module-sine", "sink=" + sink, QString("frequency=%1").arg(hz)}))
    {
        if (!m_module.isEmpty())
            return;
        m_process.start("pacat", {"--device=" + sink, "--format=s16le", QString("--rate=%1").arg(kRate), "--channels=2",
                                  "--latency-msec=20"});
        m_process.write(Sound::make(20, Sound::tone(hz, 0.5), kRate).pcm16()); // stereo
        m_process.closeWriteChannel();
    }
    ~Player()
    {
        if (!m_module.isEmpty())
            control({"unload-module", m_module});
        m_process.kill();
        m_process.waitForFinished();
    }
    Q_DISABLE_COPY(Player)

private:
    const QString m_module;
    QProcess m_process;
};

/// The amplitude of a sine of `hz` in the sound.
inline double level(const QVector<float> &mono, double hz, int rate)
{
    return Sound{rate, 1, {mono.begin(), mono.end()}}.level(hz, 0, double(mono.size() + 1) / rate);
}
} // namespace Tone
