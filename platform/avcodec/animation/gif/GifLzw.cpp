#include "avcodec/animation/gif/GifLzw.h"

#include "avcodec/animation/FrameDelta.h"

#include <algorithm>
#include <array>
#include <limits>

namespace av
{

namespace
{

constexpr int kMaxCodes = 4096;
constexpr int kMaxCodeWidth = 12;
constexpr int kNone = -1;

/// Ways to go on that are followed at once. More of them gain little.
constexpr int kMaxBranches = 4;

/// A string may end that much earlier than it could, if together with its successor it gets further.
/// That gains nothing worth the time for strings that are long anyway.
constexpr std::size_t kMaxStepsBack = 3;
constexpr std::size_t kLongString = 64;

/// Instead of no price for errors, which there are none of then.
constexpr double kMinErrorCost = 1e-9;

/// Codes after which a full dictionary is judged again.
constexpr int kDictionaryCheckInterval = 128;

/// All strings that have a code, each as its beginning and its last symbol.
class Dictionary
{
public:
    void reset(int symbols)
    {
        m_size = symbols + 2; // the codes for clear and end follow the symbols
        m_table.fill(kFree);
        m_firstChild.fill(kNone);
        for (int symbol = 0; symbol < symbols; ++symbol)
            m_symbol[std::size_t(symbol)] = quint8(symbol);
    }

    int size() const { return m_size; }
    bool isFull() const { return m_size == kMaxCodes; }
    int lastSymbol(int code) const { return m_symbol[std::size_t(code)]; }

    /// The longer strings that begin with a code's, as a list.
    int firstChild(int code) const { return m_firstChild[std::size_t(code)]; }
    int nextChild(int code) const { return m_nextChild[std::size_t(code)]; }

    int child(int code, int symbol) const
    {
        const quint32 key = keyOf(code, symbol);
        for (std::size_t place = placeOf(key); m_table[place] != kFree; place = (place + 1) % m_table.size()) {
            if (m_table[place] >> kMaxCodeWidth == key)
                return int(m_table[place] % kMaxCodes);
        }
        return kNone;
    }

    /// Numbers the string that consists of a code's and one more symbol. It may be known already, when its beginning
    /// was written although there was more to match; it gets a number all the same, as the decoder has it, too.
    void add(int code, int symbol)
    {
        const int added = m_size++;
        if (child(code, symbol) != kNone)
            return;
        m_symbol[std::size_t(added)] = quint8(symbol);
        m_nextChild[std::size_t(added)] = m_firstChild[std::size_t(code)];
        m_firstChild[std::size_t(code)] = qint16(added);
        const quint32 key = keyOf(code, symbol);
        std::size_t place = placeOf(key);
        while (m_table[place] != kFree)
            place = (place + 1) % m_table.size();
        m_table[place] = key << kMaxCodeWidth | quint32(added);
    }

private:
    static constexpr quint32 kFree = 0xffffffffu; // no entry: its code would be its own beginning

    static quint32 keyOf(int code, int symbol) { return quint32(code) << 8 | quint32(symbol); }
    static std::size_t placeOf(quint32 key) { return (key * 2654435761u) >> 19; }

    int m_size = 0;
    std::array<quint32, 8192> m_table; // key and code, by hash of the key
    std::array<quint8, kMaxCodes> m_symbol;
    std::array<qint16, kMaxCodes> m_firstChild;
    std::array<qint16, kMaxCodes> m_nextChild;
};

/// Codes as a string of bits, cut into blocks of 255 bytes.
class CodeStream
{
public:
    explicit CodeStream(int minimumCodeSize) { m_bytes.append(char(minimumCodeSize)); }

    void put(int code, int width)
    {
        m_bits |= quint32(code) << m_bitCount;
        m_bitCount += width;
        for (; m_bitCount >= 8; m_bitCount -= 8, m_bits >>= 8)
            putByte(quint8(m_bits));
    }

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
    int m_blockStart = -1;
    quint32 m_bits = 0;
    int m_bitCount = 0;
};

class Compressor
{
public:
    Compressor(const IndexedFrame &picture, const std::atomic<bool> &cancelled)
        : m_picture(picture)
        , m_cancelled(cancelled)
        , m_minimumSize(minimumCodeSize(int(picture.palette.size())))
        , m_stream(m_minimumSize)
    {
    }

    QByteArray run()
    {
        const std::size_t count = m_picture.pixels.size();
        clear();
        std::size_t at = 0;
        int symbol = firstSymbol(0, kNone);
        for (;;) {
            const std::size_t from = at;
            const int code = bestMatch(symbol, at);
            m_stream.put(code, m_width);
            if (at == count || m_cancelled)
                break;
            symbol = firstSymbol(at, m_dictionary.lastSymbol(code));
            learn(code, symbol, at - from);
        }
        m_stream.put(endCode(), m_width);
        return m_stream.finish();
    }

private:
    /// A string that fits the pixels so far.
    struct Branch {
        int code;
        int error; // more than the best colors have
    };

    static int minimumCodeSize(int colors)
    {
        int bits = 2;
        while (1 << bits < colors)
            ++bits;
        return bits;
    }

    int clearCode() const { return 1 << m_minimumSize; }
    int endCode() const { return clearCode() + 1; }

    void clear()
    {
        m_stream.put(clearCode(), m_width);
        m_dictionary.reset(clearCode());
        m_width = m_minimumSize + 1;
        m_learnt = {};
        m_recent = {};
    }

    bool mayBeTransparent(std::size_t at) const
    {
        return m_picture.transparent >= 0 && !FrameDelta::isChanged(m_picture.pixels[at]);
    }

    /// The symbol that a string begins with decides how the string before it is continued in the dictionary, so it
    /// has to be settled before the string is known. Stretches that are transparent, or not, tend to stay so.
    int firstSymbol(std::size_t at, int before) const
    {
        return mayBeTransparent(at) && before == m_picture.transparent ? before : m_picture.indices[at];
    }

    /// The code of a known string that begins with the symbol and fits the pixels from `at` on, which is moved behind
    /// them.
    int bestMatch(int symbol, std::size_t &at)
    {
        const std::size_t from = at;
        at = longestMatch(symbol, from);
        if (at == m_picture.pixels.size() || at - from > kLongString)
            return m_matches.back().code;
        std::swap(m_matches, m_candidates);
        const double pixelsPerError = m_all.pixels / std::max(m_all.bits * m_picture.errorPerBit, kMinErrorCost);
        std::size_t best = m_candidates.size();
        double most = std::numeric_limits<double>::lowest();
        for (std::size_t back = 0; back <= kMaxStepsBack && back < m_candidates.size(); ++back) {
            const std::size_t length = m_candidates.size() - back;
            const Branch &candidate = m_candidates[length - 1];
            const int lastSymbol = m_dictionary.lastSymbol(candidate.code);
            const std::size_t reached = longestMatch(firstSymbol(from + length, lastSymbol), from + length);
            const double gain = double(reached - from) - (candidate.error + m_matches.back().error) * pixelsPerError;
            if (gain > most) {
                most = gain;
                best = length;
            }
        }
        at = from + best;
        return m_candidates[best - 1].code;
    }

    /// How far the known strings get that begin with the symbol at `at`. m_matches has the best for each length.
    std::size_t longestMatch(int symbol, std::size_t at)
    {
        m_branchCount = 1;
        m_branches[0] = {symbol, 0};
        m_matches.assign(1, {symbol, 0});
        for (++at; at < m_picture.pixels.size(); ++at) {
            m_longerCount = 0;
            for (int i = 0; i < m_branchCount; ++i)
                follow(m_branches[std::size_t(i)], at);
            if (m_longerCount == 0)
                break;
            std::swap(m_branches, m_longer);
            m_branchCount = m_longerCount;
            m_matches.push_back(m_branches[0]);
        }
        return at;
    }

    void follow(const Branch &branch, std::size_t at)
    {
        const int index = m_picture.indices[at];
        if (mayBeTransparent(at)) {
            keep(m_dictionary.child(branch.code, m_picture.transparent), branch.error);
            if (index != m_picture.transparent)
                keep(m_dictionary.child(branch.code, index), branch.error);
        } else if (m_picture.tolerance == 0) {
            keep(m_dictionary.child(branch.code, index), branch.error);
        } else {
            const QRgb color = m_picture.pixels[at];
            const int least = index == m_picture.transparent ? 0 : distance(index, color);
            for (int code = m_dictionary.firstChild(branch.code); code != kNone; code = m_dictionary.nextChild(code)) {
                const int symbol = m_dictionary.lastSymbol(code);
                const int error = symbol == m_picture.transparent ? kNone : distance(symbol, color);
                if (symbol == index || (error >= 0 && error <= m_picture.tolerance))
                    keep(code, branch.error + std::max(0, error - least));
            }
        }
    }

    int distance(int symbol, QRgb color) const
    {
        const QRgb shown = m_picture.palette[std::size_t(symbol)];
        const int red = qRed(shown) - qRed(color);
        const int green = qGreen(shown) - qGreen(color);
        const int blue = qBlue(shown) - qBlue(color);
        return red * red + green * green + blue * blue;
    }

    /// Keeps the branches of the least error, those first.
    void keep(int code, int error)
    {
        if (code == kNone)
            return;
        if (m_longerCount == kMaxBranches && m_longer[kMaxBranches - 1].error <= error)
            return;
        int place = m_longerCount < kMaxBranches ? m_longerCount++ : kMaxBranches - 1;
        for (; place > 0 && m_longer[std::size_t(place - 1)].error > error; --place)
            m_longer[std::size_t(place)] = m_longer[std::size_t(place - 1)];
        m_longer[std::size_t(place)] = {code, error};
    }

    /// Adds a string to the dictionary. A full one stays in use for as long as it does not do worse than while it
    /// was filled.
    void learn(int code, int symbol, std::size_t pixels)
    {
        Yield &yield = m_dictionary.isFull() ? m_recent : m_learnt;
        for (Yield *sum : {&yield, &m_all}) {
            sum->pixels += double(pixels);
            sum->bits += m_width;
        }
        if (!m_dictionary.isFull()) {
            m_dictionary.add(code, symbol);
            if (m_dictionary.size() > 1 << m_width && m_width < kMaxCodeWidth)
                ++m_width;
        } else if (m_recent.bits >= kDictionaryCheckInterval * kMaxCodeWidth) {
            if (m_recent.pixels * m_learnt.bits < m_learnt.pixels * m_recent.bits)
                clear();
            m_recent = {};
        }
    }

    struct Yield {
        double pixels = 0;
        double bits = 0;
    };

    const IndexedFrame &m_picture;
    const std::atomic<bool> &m_cancelled;
    const int m_minimumSize;
    CodeStream m_stream;
    Dictionary m_dictionary;
    int m_width = m_minimumSize + 1;
    Yield m_learnt;
    Yield m_recent;
    Yield m_all{1, double(m_width)}; // as if one code had been written
    std::array<Branch, kMaxBranches> m_branches;
    std::array<Branch, kMaxBranches> m_longer;
    int m_branchCount = 0;
    int m_longerCount = 0;
    std::vector<Branch> m_matches;
    std::vector<Branch> m_candidates;
};

} // namespace

QByteArray gifImageData(const IndexedFrame &picture, const std::atomic<bool> &cancelled)
{
    return Compressor(picture, cancelled).run();
}

} // namespace av
