#include "recording/wav/SampleConverter.h"

#include <QtEndian>

#include <cstring>

namespace kel
{

namespace
{

constexpr quint32 kMaxRate = 10'000'000; // Hz; keeps every product of a rate and a time in range
constexpr int kMaxFrameBytes = 65'535;   // which a header can state
constexpr float kInt32Scale = 1.0F / 2147483648.0F;

/// Sign and scale of an integer of 24 bits become those of one of 32.
qint32 widened24(const char *bytes)
{
    const auto *at = reinterpret_cast<const uchar *>(bytes);
    return qint32(quint32(at[0]) << 8 | quint32(at[1]) << 16 | quint32(at[2]) << 24);
}

template <typename Read>
void toFloats(qint64 count, char *out, Read read)
{
    for (qint64 i = 0; i < count; ++i)
        qToLittleEndian<float>(read(i), out + i * 4);
}

} // namespace

SampleConverter SampleConverter::from(const WavHeader &stored, bool integers32AsFloats, QString *problem)
{
    const bool isFloat = stored.formatTag == WavHeader::kIeeeFloat;
    const bool isInteger = stored.formatTag == WavHeader::kPcm || stored.formatTag == WavHeader::kExtensible;
    const int bits = stored.bitsPerSample;
    SampleConverter converter;
    converter.m_storedBytes = bits / 8;
    if (isFloat && bits == 64)
        converter.m_kind = Kind::Float64;
    else if (isInteger && bits == 24)
        converter.m_kind = Kind::Int24;
    else if (isInteger && bits == 32 && integers32AsFloats)
        converter.m_kind = Kind::Int32;
    const bool isKept = isFloat ? bits == 32 : bits == 8 || bits == 16 || bits == 32;
    if (!isFloat && !isInteger)
        *problem = QStringLiteral("Unsupported audio format: %1").arg(stored.formatTag);
    else if (!converter.isNeeded() && !isKept)
        *problem = QStringLiteral("Unsupported bits per sample: %1").arg(bits);
    else if (stored.channelCount == 0 || stored.channelCount * converter.bytes() > kMaxFrameBytes ||
             stored.sampleRate == 0 || stored.sampleRate > kMaxRate)
        *problem =
            QStringLiteral("Invalid WAV file: %1 channels at %2 Hz").arg(stored.channelCount).arg(stored.sampleRate);
    else
        *problem = QString();
    return converter;
}

WavHeader SampleConverter::header(const WavHeader &stored) const
{
    WavHeader header = WavHeader::pcm(stored.sampleRate, stored.channelCount, quint16(bytes() * 8));
    if (isNeeded() || stored.formatTag == WavHeader::kIeeeFloat)
        header.formatTag = WavHeader::kIeeeFloat;
    return header;
}

void SampleConverter::convert(const char *stored, qint64 count, char *out) const
{
    switch (m_kind) {
    case Kind::Copy:
        std::memcpy(out, stored, size_t(count * m_storedBytes));
        break;
    case Kind::Int24:
        toFloats(count, out, [=](qint64 i) { return float(widened24(stored + i * 3)) * kInt32Scale; });
        break;
    case Kind::Int32:
        toFloats(count, out, [=](qint64 i) { return float(qFromLittleEndian<qint32>(stored + i * 4)) * kInt32Scale; });
        break;
    case Kind::Float64:
        toFloats(count, out, [=](qint64 i) { return float(qFromLittleEndian<double>(stored + i * 8)); });
        break;
    }
}

} // namespace kel
