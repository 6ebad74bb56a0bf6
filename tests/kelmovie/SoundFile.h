#pragma once

#include "audio/WavHeader.h"

#include <QByteArray>
#include <QtEndian>

#include <cmath>

/// WAV files made by hand, one channel.
namespace SoundFile
{

inline QByteArray wav(quint32 rate, quint16 bits, const QByteArray &samples)
{
    WavHeader header = WavHeader::pcm(rate, 1, bits);
    header.setDataSize(samples.size());
    return header.toBytes() + samples;
}

/// Each sample is the number of its frame, so that what is heard tells its place. No gain touches 32-bit integers.
inline QByteArray numbered(quint32 rate, int frames)
{
    QByteArray samples(frames * 4, Qt::Uninitialized);
    for (int i = 0; i < frames; ++i)
        qToLittleEndian<qint32>(i, samples.data() + i * 4);
    return wav(rate, 32, samples);
}

inline qint32 numberAt(const QByteArray &samples, int offset)
{
    return qFromLittleEndian<qint32>(samples.constData() + offset / 4 * 4);
}

inline QByteArray tone(quint32 rate, double hertz, double amplitude, int ms)
{
    const int frames = int(qint64(rate) * ms / 1000);
    QByteArray samples(frames * 2, Qt::Uninitialized);
    for (int i = 0; i < frames; ++i)
        qToLittleEndian(qint16(32767 * amplitude * std::sin(2 * M_PI * hertz * i / rate)), samples.data() + i * 2);
    return wav(rate, 16, samples);
}

} // namespace SoundFile
