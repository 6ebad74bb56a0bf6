#include "recording/wav/WavPartReader.h"

#include <QtEndian>

namespace kel
{

namespace
{
constexpr int RiffSize = 12;
constexpr int ChunkHeaderSize = 8;
constexpr int FmtSize = 16;
constexpr int SubFormatOffset = 24; // in the extensible form; its first two bytes are a format tag
constexpr quint32 MaxFmtSize = 1024;
} // namespace

WavPartReader::WavPartReader(const QString &path)
    : m_file(path)
{
}

bool WavPartReader::open()
{
    if (!m_file.open(QIODevice::ReadOnly))
        return false;
    findSound();
    m_file.seek(m_dataOffset);
    return true;
}

void WavPartReader::findSound()
{
    const QByteArray start = m_file.read(WavHeader::Size);
    if (start.size() < WavHeader::Size || !WavHeader::isRiffWave(start.constData()))
        return;
    qint64 position = RiffSize;
    while (m_file.seek(position)) {
        const QByteArray chunk = m_file.read(ChunkHeaderSize);
        if (chunk.size() < ChunkHeaderSize)
            break;
        const auto size = qFromLittleEndian<quint32>(chunk.constData() + 4);
        position += ChunkHeaderSize;
        if (chunk.startsWith("data")) {
            m_dataOffset = position;
            break;
        }
        if (chunk.startsWith("fmt ") && size >= FmtSize && size <= MaxFmtSize)
            takeFormat(m_file.read(size));
        position += size + size % 2;
    }
    if (m_dataOffset > 0 && hasHeader())
        return;
    // A header that is damaged is at least of the usual length.
    m_dataOffset = WavHeader::Size;
    m_header = WavHeader::fromBytes(start.constData());
    m_fmtChunk = start.mid(WavHeader::FmtChunkOffset, WavHeader::FmtChunkSize);
}

void WavPartReader::takeFormat(const QByteArray &chunk)
{
    if (chunk.size() < FmtSize)
        return;
    QByteArray canonical = WavHeader().toBytes();
    canonical.replace(WavHeader::FmtChunkOffset + ChunkHeaderSize, FmtSize, chunk.constData(), FmtSize);
    m_header = WavHeader::fromBytes(canonical.constData());
    if (m_header.formatTag == WavHeader::Extensible && chunk.size() >= SubFormatOffset + 2)
        m_header.formatTag = qFromLittleEndian<quint16>(chunk.constData() + SubFormatOffset);
    m_fmtChunk = m_header.toBytes().mid(WavHeader::FmtChunkOffset, WavHeader::FmtChunkSize);
}

} // namespace kel
