#include "recording/wav/WavHeader.h"

#include <QFileDevice>
#include <QtEndian>

#include <cstring>
#include <limits>

namespace kel
{

namespace
{
constexpr quint32 kFmtBodySize = 16;
constexpr int kRiffSizeOffset = 4;
constexpr int kDataSizeOffset = 40;
constexpr qint64 kBytesBeforeData = WavHeader::kSize - 8; // included in the RIFF size

template <typename T>
void append(QByteArray &bytes, T value)
{
    value = qToLittleEndian(value);
    bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
}

quint32 clamped(qint64 size)
{
    return quint32(qBound(qint64(0), size, qint64(std::numeric_limits<quint32>::max())));
}

bool writeSize(QFileDevice &file, qint64 offset, quint32 size)
{
    QByteArray bytes;
    append(bytes, size);
    return file.seek(offset) && file.write(bytes) == bytes.size();
}
} // namespace

WavHeader WavHeader::pcm(quint32 sampleRate, quint16 channelCount, quint16 bitsPerSample)
{
    WavHeader header;
    header.channelCount = channelCount;
    header.sampleRate = sampleRate;
    header.blockAlign = quint16(channelCount * (bitsPerSample / 8));
    header.byteRate = sampleRate * header.blockAlign;
    header.bitsPerSample = bitsPerSample;
    return header;
}

WavHeader WavHeader::fromBytes(const char *bytes)
{
    WavHeader header;
    header.riffSize = qFromLittleEndian<quint32>(bytes + kRiffSizeOffset);
    header.formatTag = qFromLittleEndian<quint16>(bytes + 20);
    header.channelCount = qFromLittleEndian<quint16>(bytes + 22);
    header.sampleRate = qFromLittleEndian<quint32>(bytes + 24);
    header.byteRate = qFromLittleEndian<quint32>(bytes + 28);
    header.blockAlign = qFromLittleEndian<quint16>(bytes + 32);
    header.bitsPerSample = qFromLittleEndian<quint16>(bytes + 34);
    header.dataSize = qFromLittleEndian<quint32>(bytes + kDataSizeOffset);
    return header;
}

bool WavHeader::isRiffWave(const char *bytes)
{
    return std::memcmp(bytes, "RIFF", 4) == 0 && std::memcmp(bytes + 8, "WAVE", 4) == 0;
}

QByteArray WavHeader::toBytes() const
{
    QByteArray bytes;
    bytes.reserve(kSize);
    bytes.append("RIFF");
    append(bytes, riffSize);
    bytes.append("WAVEfmt ");
    append(bytes, kFmtBodySize);
    append(bytes, formatTag);
    append(bytes, channelCount);
    append(bytes, sampleRate);
    append(bytes, byteRate);
    append(bytes, blockAlign);
    append(bytes, bitsPerSample);
    bytes.append("data");
    append(bytes, dataSize);
    return bytes;
}

void WavHeader::setDataSize(qint64 bytes)
{
    dataSize = clamped(bytes);
    riffSize = clamped(bytes + kBytesBeforeData);
}

bool WavHeader::writeSizes(QFileDevice &file, qint64 dataBytes)
{
    WavHeader header;
    header.setDataSize(dataBytes);
    return writeSize(file, kRiffSizeOffset, header.riffSize) && writeSize(file, kDataSizeOffset, header.dataSize);
}

} // namespace kel
