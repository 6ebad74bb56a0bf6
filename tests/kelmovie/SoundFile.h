#pragma once

#include "audio/WavHeader.h"

#include <QByteArray>
#include <QtEndian>

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

} // namespace SoundFile
