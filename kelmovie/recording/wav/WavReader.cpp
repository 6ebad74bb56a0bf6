#include "recording/wav/WavReader.h"

#include "recording/RecordingFile.h"

#include <QFileInfo>
#include <QtEndian>

#include <algorithm>

namespace kel
{

namespace
{
constexpr int kFmtHeaderSize = 8;
constexpr int kFmtSize = 16;
constexpr int kSubFormatOffset = 24; // in the extensible form; its first two bytes are a format tag
constexpr quint32 kMaxFmtSize = 1024;
constexpr int kMaxSampleBytes = 8;
} // namespace

bool WavReader::open(const QString &path)
{
    m_file.close();
    const QFileInfo info(path);
    m_errorString = openTrackFile(&m_file, info.path(), info.fileName());
    if (!m_errorString.isEmpty())
        return false;
    m_header = WavHeader();
    m_fmtChunk.clear();
    m_isIntact = false;
    m_dataOffset = 0;
    m_dataSize = m_file.size();
    const QByteArray start = m_file.read(WavHeader::kSize);
    if (start.size() == WavHeader::kSize && WavHeader::isRiffWave(start.constData()))
        findSound(start);
    return seek(0);
}

void WavReader::findSound(const QByteArray &start)
{
    m_isIntact = findSound(WavChunks::Padding::ToEvenSize) || findSound(WavChunks::Padding::None);
    if (m_isIntact)
        return;
    // Assume that a damaged header has at least the usual length.
    m_dataOffset = WavHeader::kSize;
    m_dataSize = m_file.size() - m_dataOffset;
    m_header = WavHeader::fromBytes(start.constData());
    m_fmtChunk = start.mid(WavHeader::kFmtChunkOffset, WavHeader::kFmtChunkSize);
}

bool WavReader::findSound(WavChunks::Padding padding)
{
    m_fmtChunk.clear();
    m_dataOffset = 0;
    quint32 stated = 0;
    WavChunks chunks(m_file, padding);
    while ((m_dataOffset == 0 || !hasHeader()) && chunks.next()) {
        if (chunks.isData()) {
            m_dataOffset = chunks.offset();
            stated = chunks.size();
        } else if (chunks.isFormat() && chunks.size() >= kFmtSize && chunks.size() <= kMaxFmtSize) {
            takeFormat(m_file.read(chunks.size()));
        }
    }
    if (m_dataOffset == 0 || !hasHeader())
        return false;
    m_dataSize = soundBytes(stated);
    return true;
}

void WavReader::takeFormat(const QByteArray &chunk)
{
    if (chunk.size() < kFmtSize)
        return;
    QByteArray canonical = WavHeader().toBytes();
    canonical.replace(WavHeader::kFmtChunkOffset + kFmtHeaderSize, kFmtSize, chunk.constData(), kFmtSize);
    m_header = WavHeader::fromBytes(canonical.constData());
    if (m_header.formatTag == WavHeader::kExtensible && chunk.size() >= kSubFormatOffset + 2)
        m_header.formatTag = qFromLittleEndian<quint16>(chunk.constData() + kSubFormatOffset);
    // A sample of 20 bits takes 24.
    const int sampleBytes = m_header.channelCount > 0 ? m_header.blockAlign / m_header.channelCount : 0;
    if (sampleBytes <= kMaxSampleBytes)
        m_header.bitsPerSample = quint16(std::max<int>(m_header.bitsPerSample, sampleBytes * 8));
    m_fmtChunk = m_header.toBytes().mid(WavHeader::kFmtChunkOffset, WavHeader::kFmtChunkSize);
}

qint64 WavReader::soundBytes(quint32 stated)
{
    const qint64 present = m_file.size() - m_dataOffset;
    if (stated >= present)
        return present;
    for (const auto padding : {WavChunks::Padding::ToEvenSize, WavChunks::Padding::None}) {
        WavChunks chunks(m_file, padding, m_dataOffset - WavChunks::kHeaderSize);
        bool isFirst = true;
        while (chunks.next() && (isFirst || chunks.hasName())) {
            isFirst = false;
            if (isEndOfFile(chunks.offset() + chunks.size()))
                return stated;
        }
    }
    return present;
}

/// With or without a byte of padding.
bool WavReader::isEndOfFile(qint64 offset) const
{
    return offset == m_file.size() || offset == m_file.size() - 1;
}

} // namespace kel
