#pragma once

#include "support/Sound.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QVector>

/// Sine tones, played into a sink of the private sound server and found again in what was recorded.
namespace Tone
{
constexpr int Rate = 48000;

/// Runs a command of the sound server's control program; true when it did as asked.
inline bool control(const QStringList &arguments)
{
    return QProcess::execute(QStringLiteral("pactl"), arguments) == 0;
}

/// Adds an output; answers the number of its module.
inline QString addSink(const QString &name)
{
    QProcess process;
    process.start(QStringLiteral("pactl"), {QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                                            QStringLiteral("sink_name=") + name, QStringLiteral("norewinds=1")});
    process.waitForFinished();
    return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
}

/// Plays a tone into `sink` from its construction until `ms` are over or it is destroyed.
class Player
{
public:
    Player(const QString &sink, double hz, int ms)
    {
        m_process.start(QStringLiteral("pacat"), {QStringLiteral("--device=") + sink, QStringLiteral("--format=s16le"),
                                                  QStringLiteral("--rate=%1").arg(Rate), QStringLiteral("--channels=2"),
                                                  QStringLiteral("--latency-msec=20")});
        m_process.write(Sound::make(ms / 1000.0, Sound::tone(hz, 0.5), Rate).pcm16()); // stereo
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

/// How much of the sound is a sine of `hz`: its amplitude.
inline double level(const QVector<float> &mono, double hz, int rate)
{
    return Sound{rate, 1, {mono.begin(), mono.end()}}.level(hz, 0, double(mono.size() + 1) / rate);
}
} // namespace Tone
