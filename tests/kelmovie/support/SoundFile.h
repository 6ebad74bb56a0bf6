#pragma once

#include "recording/wav/WavHeader.h"
#include "support/Files.h"

#include <QVector>
#include <QtEndian>

#include <initializer_list>

/// Makes and reads WAV files.
namespace SoundFile
{

template <typename Number>
QByteArray littleEndian(std::initializer_list<Number> numbers)
{
    QByteArray bytes(int(numbers.size() * sizeof(Number)), Qt::Uninitialized);
    qToLittleEndian<Number>(numbers.begin(), qsizetype(numbers.size()), bytes.data());
    return bytes;
}

inline QByteArray wav(quint32 rate, quint16 bits, const QByteArray &samples, quint16 channels = 1)
{
    kel::WavHeader header = kel::WavHeader::pcm(rate, channels, bits);
    header.setDataSize(samples.size());
    return header.toBytes() + samples;
}

/// Each sample is the number of its frame, which identifies its position. 32-bit integers are never amplified.
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

/// The first channel of a file of floats or 16-bit integers, whatever sizes the header states.
inline QVector<float> samples(const QByteArray &file, const kel::WavHeader &header)
{
    QVector<float> samples;
    for (int at = kel::WavHeader::kSize; at + header.blockAlign <= file.size(); at += header.blockAlign) {
        const char *const sample = file.constData() + at;
        samples << (header.formatTag == kel::WavHeader::kIeeeFloat ? qFromLittleEndian<float>(sample)
                                                                   : float(qFromLittleEndian<qint16>(sample)) / 32768);
    }
    return samples;
}

/// The same; empty unless the header describes the file exactly.
inline QVector<float> exactSamples(const QString &path, kel::WavHeader *header)
{
    const QByteArray bytes = readFile(path);
    if (bytes.size() < kel::WavHeader::kSize || !kel::WavHeader::isRiffWave(bytes.constData()))
        return {};
    *header = kel::WavHeader::fromBytes(bytes.constData());
    if (header->dataSize != quint32(bytes.size() - kel::WavHeader::kSize) || header->riffSize != header->dataSize + 36)
        return {};
    return samples(bytes, *header);
}

} // namespace SoundFile
