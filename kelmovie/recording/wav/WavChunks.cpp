#include "recording/wav/WavChunks.h"

#include <QIODevice>
#include <QtEndian>

namespace kel
{

namespace
{
constexpr int kRiffHeaderSize = 12;
constexpr int kChunkHeaderSize = 8;
} // namespace

WavChunks::WavChunks(QIODevice &file, Padding padding)
    : m_file(file)
    , m_padding(padding)
    , m_next(kRiffHeaderSize)
{
}

bool WavChunks::next()
{
    if (m_count == kMaxChunks || !m_file.seek(m_next))
        return false;
    ++m_count;
    m_header = m_file.read(kChunkHeaderSize);
    if (m_header.size() < kChunkHeaderSize)
        return false;
    m_offset = m_next + kChunkHeaderSize;
    const qint64 paddingBytes = m_padding == Padding::ToEvenSize ? size() % 2 : 0;
    m_next = m_offset + size() + paddingBytes;
    return true;
}

quint32 WavChunks::size() const
{
    return qFromLittleEndian<quint32>(m_header.constData() + 4);
}

} // namespace kel
