#include "recording/wav/WavPartReader.h"

#include "recording/wav/WavChunks.h"

#include <QtEndian>

namespace kel
{

namespace
{
constexpr int kFmtHeaderSize = 8;
constexpr int kFmtSize = 16;
constexpr int kSubFormatOffset = 24; // in the extensible form; its first two bytes are a format tag
constexpr quint32 kMaxFmtSize = 1024;
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
    const QByteArray start = m_file.read(WavHeader::kSize);
    if (start.size() < WavHeader::kSize || !WavHeader::isRiffWave(start.constData()))
        return;
    WavChunks chunks(m_file, WavChunks::Padding::ToEvenSize);
    while (m_dataOffset == 0 && chunks.next()) {
        if (chunks.isData())
            m_dataOffset = chunks.offset();
        else if (chunks.isFormat() && chunks.size() >= kFmtSize && chunks.size() <= kMaxFmtSize)
            takeFormat(m_file.read(chunks.size()));
    }
    if (m_dataOffset > 0 && hasHeader())
        return;
    // Assume that a damaged header has at least the usual length.
    m_dataOffset = WavHeader::kSize;
    m_header = WavHeader::fromBytes(start.constData());
    m_fmtChunk = start.mid(WavHeader::kFmtChunkOffset, WavHeader::kFmtChunkSize);
}

void WavPartReader::takeFormat(const QByteArray &chunk)
{
    if (chunk.size() < kFmtSize)
        return;
    QByteArray canonical = WavHeader().toBytes();
    canonical.replace(WavHeader::kFmtChunkOffset + kFmtHeaderSize, kFmtSize, chunk.constData(), kFmtSize);
    m_header = WavHeader::fromBytes(canonical.constData());
    if (m_header.formatTag == WavHeader::kExtensible && chunk.size() >= kSubFormatOffset + 2)
        m_header.formatTag = qFromLittleEndian<quint16>(chunk.constData() + kSubFormatOffset);
    m_fmtChunk = m_header.toBytes().mid(WavHeader::kFmtChunkOffset, WavHeader::kFmtChunkSize);
}

} // namespace kel
