#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QVector>

#include <cmath>

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

/// Stereo, 16 bits, at half of full scale.
inline QByteArray samples(double hz, int ms)
{
    QByteArray bytes;
    for (int i = 0; i < Rate * ms / 1000; ++i) {
        const auto value = qint16(std::lround(16384 * std::sin(2 * M_PI * hz * i / Rate)));
        for (int channel = 0; channel < 2; ++channel)
            bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
    }
    return bytes;
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
        m_process.write(samples(hz, ms));
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
    double real = 0;
    double imaginary = 0;
    for (int i = 0; i < mono.size(); ++i) {
        real += mono[i] * std::cos(2 * M_PI * hz * i / rate);
        imaginary += mono[i] * std::sin(2 * M_PI * hz * i / rate);
    }
    return mono.isEmpty() ? 0 : 2 * std::hypot(real, imaginary) / mono.size();
}
} // namespace Tone
