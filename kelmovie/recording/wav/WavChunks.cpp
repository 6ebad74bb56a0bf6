#include "recording/wav/WavChunks.h"

#include <QIODevice>
#include <QtEndian>

#include <algorithm>

namespace kel
{

WavChunks::WavChunks(QIODevice &file, Padding padding, qint64 first)
    : m_file(file)
    , m_padding(padding)
    , m_next(first)
{
}

bool WavChunks::next()
{
    if (m_count == kMaxChunks || !m_file.seek(m_next))
        return false;
    ++m_count;
    m_header = m_file.read(kHeaderSize);
    if (m_header.size() < kHeaderSize)
        return false;
    m_offset = m_next + kHeaderSize;
    const qint64 paddingBytes = m_padding == Padding::ToEvenSize ? size() % 2 : 0;
    m_next = m_offset + size() + paddingBytes;
    return true;
}

bool WavChunks::hasName() const
{
    return std::all_of(m_header.begin(), m_header.begin() + 4, [](char c) { return c >= ' ' && c <= '~'; });
}

quint32 WavChunks::size() const
{
    return qFromLittleEndian<quint32>(m_header.constData() + 4);
}

} // namespace kel
