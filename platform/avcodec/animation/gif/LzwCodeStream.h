#pragma once

#include <QByteArray>

#include <utility>

namespace av
{

/// Packs LZW codes into the image data of a GIF file: the code size and blocks of up to 255 bytes.
class LzwCodeStream
{
public:
    explicit LzwCodeStream(int minimumCodeSize) { m_bytes.append(char(minimumCodeSize)); }

    /// Appends the lowest `width` bits of a code.
    void put(int code, int width)
    {
        m_bits |= quint32(code) << m_bitCount;
        m_bitCount += width;
        for (; m_bitCount >= 8; m_bitCount -= 8, m_bits >>= 8)
            putByte(quint8(m_bits));
    }

    /// The complete data. Call only once.
    QByteArray finish()
    {
        if (m_bitCount > 0)
            putByte(quint8(m_bits));
        endBlock();
        m_bytes.append('\0');
        return std::move(m_bytes);
    }

private:
    void putByte(quint8 byte)
    {
        if (m_blockStart < 0) {
            m_blockStart = m_bytes.size();
            m_bytes.append('\0');
        }
        m_bytes.append(char(byte));
        if (m_bytes.size() - m_blockStart > 255)
            endBlock();
    }

    void endBlock()
    {
        if (m_blockStart >= 0)
            m_bytes[m_blockStart] = char(m_bytes.size() - m_blockStart - 1);
        m_blockStart = -1;
    }

    QByteArray m_bytes;
    int m_blockStart = -1; // index of the block's length byte; -1: no block
    quint32 m_bits = 0;
    int m_bitCount = 0;
};

} // namespace av
