#pragma once

#include <QtGlobal>

#include <array>
#include <cstddef>

namespace av
{

/// The strings that have a code in the LZW compression of GIF, each as its prefix and its last symbol.
class LzwDictionary
{
public:
    static constexpr int kMaxCodes = 4096;
    static constexpr int kMaxCodeWidth = 12; ///< bits
    static constexpr int kNone = -1;         ///< no code

    /// Keeps only the single symbols and the codes for clear and end, which follow them.
    void reset(int symbols)
    {
        m_size = symbols + 2;
        m_table.fill(kFree);
        m_firstChild.fill(kNone);
        for (int symbol = 0; symbol < symbols; ++symbol)
            m_symbol[std::size_t(symbol)] = quint8(symbol);
    }

    int size() const { return m_size; }
    bool isFull() const { return m_size == kMaxCodes; }
    int lastSymbol(int code) const { return m_symbol[std::size_t(code)]; }

    /// The strings that are one symbol longer than that of a code, as a linked list.
    int firstChild(int code) const { return m_firstChild[std::size_t(code)]; }
    int nextChild(int code) const { return m_nextChild[std::size_t(code)]; }

    /// The code of a code's string plus one symbol.
    int child(int code, int symbol) const
    {
        const quint32 key = keyOf(code, symbol);
        for (std::size_t slot = slotOf(key); m_table[slot] != kFree; slot = (slot + 1) % m_table.size()) {
            if (m_table[slot] >> kMaxCodeWidth == key)
                return int(m_table[slot] % kMaxCodes);
        }
        return kNone;
    }

    /// Assigns the next code to a code's string plus one symbol. If the compressor has written less than the longest
    /// match, that string may already have a code; the new code is then left unused, as the decoder assigns it too.
    void add(int code, int symbol)
    {
        const int added = m_size++;
        if (child(code, symbol) != kNone)
            return;
        m_symbol[std::size_t(added)] = quint8(symbol);
        m_nextChild[std::size_t(added)] = m_firstChild[std::size_t(code)];
        m_firstChild[std::size_t(code)] = qint16(added);
        const quint32 key = keyOf(code, symbol);
        std::size_t slot = slotOf(key);
        while (m_table[slot] != kFree)
            slot = (slot + 1) % m_table.size();
        m_table[slot] = key << kMaxCodeWidth | quint32(added);
    }

private:
    static constexpr quint32 kFree = 0xffffffffu; // impossible as an entry: its code would be its own prefix

    static quint32 keyOf(int code, int symbol) { return quint32(code) << 8 | quint32(symbol); }
    static std::size_t slotOf(quint32 key) { return (key * 2654435761u) >> 19; }

    int m_size = 0;
    std::array<quint32, 8192> m_table; // hash table of keys and codes
    std::array<quint8, kMaxCodes> m_symbol;
    std::array<qint16, kMaxCodes> m_firstChild;
    std::array<qint16, kMaxCodes> m_nextChild;
};

} // namespace av
