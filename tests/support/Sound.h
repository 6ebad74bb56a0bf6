#pragma once

#include "support/HostProgram.h"

#include <QByteArray>
#include <QDataStream>
#include <QFile>
#include <QString>
#include <QtEndian>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

/// Sound in tests: generated, written as a WAV file, decoded by the ffmpeg program and measured.
struct Sound {
    int rate = 48'000;
    int channels = 2;
    std::vector<float> samples; ///< interleaved

    /// `seconds` of the signal `value(time)`, in all channels.
    static Sound make(double seconds, const std::function<double(double)> &value, int rate = 48'000, int channels = 2)
    {
        Sound sound{rate, channels, {}};
        for (int frame = 0; frame < int(std::lround(seconds * rate)); ++frame)
            sound.samples.insert(sound.samples.end(), size_t(channels), float(value(double(frame) / rate)));
        return sound;
    }

    /// A sine between the given times, silence otherwise.
    static std::function<double(double)> tone(double hertz, double level, double from = 0, double to = 1e9)
    {
        return [=](double time) { return time >= from && time < to ? level * std::sin(2 * M_PI * hertz * time) : 0.0; };
    }

    /// The first audio stream of a file, as 48 kHz stereo; empty if it has none.
    static Sound decode(const QString &path)
    {
        Sound sound;
        if (path.endsWith(QLatin1String(".wav"))) { // of plain 16-bit samples, which take no program
            QFile file(path);
            const QByteArray whole = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
            sound.samples.resize(size_t(std::max(whole.size() - 44, 0)) / sizeof(qint16));
            const QByteArray canonical = QByteArray::fromHex("0100 0200 80bb0000 00ee0200 0400 1000 64617461");
            if (whole.mid(20, canonical.size()) != canonical)
                qFatal("%s has another format", qPrintable(path));
            for (size_t i = 0; i < sound.samples.size(); ++i)
                sound.samples[i] = qFromLittleEndian<qint16>(whole.constData() + 44 + 2 * i) / 32768.0F;
            return sound;
        }
        const QByteArray bytes = HostProgram::run("ffmpeg", {"-v", "error", "-i", path, "-map", "0:a:0", "-f", "f32le",
                                                             "-ac", "2", "-ar", "48000", "pipe:1"})
                                     .output;
        const auto *const samples = reinterpret_cast<const float *>(bytes.constData());
        sound.samples.assign(samples, samples + size_t(bytes.size()) / sizeof(float));
        return sound;
    }

    double seconds() const { return double(samples.size()) / channels / rate; }

    QByteArray pcm16() const
    {
        QByteArray data;
        for (const float sample : samples) {
            const auto value = qint16(std::lround(double(sample) * 32767));
            data.append(reinterpret_cast<const char *>(&value), sizeof value);
        }
        return data;
    }

    /// A canonical WAV file of floats or of 16-bit samples.
    QByteArray wav(bool isFloat = true) const
    {
        const int bytes = isFloat ? 4 : 2;
        const QByteArray data =
            isFloat ? QByteArray(reinterpret_cast<const char *>(samples.data()), int(samples.size() * sizeof(float)))
                    : pcm16();
        QByteArray head;
        QDataStream stream(&head, QIODevice::WriteOnly);
        stream.setByteOrder(QDataStream::LittleEndian);
        stream.writeRawData("RIFF", 4);
        stream << quint32(data.size() + 36);
        stream.writeRawData("WAVEfmt ", 8);
        stream << quint32(16) << quint16(isFloat ? 3 : 1) << quint16(channels) << quint32(rate)
               << quint32(rate * channels * bytes) << quint16(channels * bytes) << quint16(bytes * 8);
        stream.writeRawData("data", 4);
        stream << quint32(data.size());
        return head + data;
    }
    bool save(const QString &path, bool isFloat = true) const
    {
        QFile file(path);
        const QByteArray bytes = wav(isFloat);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }

    /// The amplitude of a frequency in a channel between two times (Goertzel).
    double level(double hertz, double from, double to, int channel = 0) const
    {
        const double turn = 2 * std::cos(2 * M_PI * hertz / rate);
        double last = 0;
        double beforeLast = 0;
        const int first = int(from * rate);
        const int end = std::min(int(to * rate), int(samples.size()) / channels);
        for (int frame = first; frame < end; ++frame) {
            const double next = double(samples[size_t(frame * channels + channel)]) + turn * last - beforeLast;
            beforeLast = last;
            last = next;
        }
        const double power = last * last + beforeLast * beforeLast - turn * last * beforeLast;
        return end > first ? 2 * std::sqrt(std::max(power, 0.0)) / (end - first) : 0;
    }

    /// The largest magnitude between two times.
    double peak(double from = 0, double to = 1e9) const
    {
        double peak = 0;
        const auto end = std::min(samples.size(), size_t(to * rate * channels));
        for (auto i = size_t(from * rate) * size_t(channels); i < end; ++i)
            peak = std::max(peak, double(std::fabs(samples[i])));
        return peak;
    }

    /// The first time at which a sample reaches `level`, -1 if none does.
    double onset(double level) const
    {
        for (size_t i = 0; i < samples.size(); ++i) {
            if (double(std::fabs(samples[i])) >= level)
                return double(i / size_t(channels)) / rate;
        }
        return -1;
    }
    /// The last time at which a sample reaches `level`, -1 if none does.
    double end(double level) const
    {
        for (size_t i = samples.size(); i > 0; --i) {
            if (double(std::fabs(samples[i - 1])) >= level)
                return double((i - 1) / size_t(channels)) / rate;
        }
        return -1;
    }
};
