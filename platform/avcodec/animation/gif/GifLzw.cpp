#include "avcodec/animation/gif/GifLzw.h"

#include "avcodec/animation/FrameDelta.h"
#include "avcodec/animation/gif/LzwCodeStream.h"
#include "avcodec/animation/gif/LzwDictionary.h"

#include <algorithm>
#include <array>
#include <limits>

namespace av
{

namespace
{

/// Number of alternatives that are followed at once. More of them gain little.
constexpr int kMaxBranches = 4;

/// A string may end this many pixels before its longest match, if the next string then reaches further. For strings
/// longer than kLongString this is not worth the time.
constexpr std::size_t kMaxStepsBack = 3;
constexpr std::size_t kLongString = 64;

/// Avoids a division by zero when errors cost nothing: then there are none.
constexpr double kMinErrorCost = 1e-9;

/// Number of codes after which the efficiency of a full dictionary is checked again.
constexpr int kDictionaryCheckInterval = 128;

/// Compresses one frame.
class Compressor
{
public:
    Compressor(const IndexedFrame &frame, const std::atomic<bool> &cancelled)
        : m_frame(frame)
        , m_cancelled(cancelled)
        , m_minimumSize(minimumCodeSize(int(frame.palette.size())))
        , m_stream(m_minimumSize)
    {
    }

    QByteArray run()
    {
        const std::size_t count = m_frame.pixels.size();
        clear();
        std::size_t at = 0;
        int symbol = firstSymbol(0, LzwDictionary::kNone);
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
    /// A dictionary string that matches the pixels so far.
    struct Branch {
        int code;
        int error; // squared distance in excess of that of the best colors
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
        m_filling = {};
        m_recent = {};
    }

    bool mayBeTransparent(std::size_t at) const
    {
        return m_frame.transparent >= 0 && !FrameDelta::isChanged(m_frame.pixels[at]);
    }

    /// The first symbol of a string. It also becomes the last symbol of the dictionary string that extends the previous
    /// one, so it has to be chosen before the string is known. Transparent runs stay transparent, as their neighbors
    /// mostly do.
    int firstSymbol(std::size_t at, int before) const
    {
        return mayBeTransparent(at) && before == m_frame.transparent ? before : m_frame.indices[at];
    }

    /// The code of a dictionary string that begins with `symbol` and matches the pixels from `at` on. Moves `at` behind
    /// the match.
    int bestMatch(int symbol, std::size_t &at)
    {
        const std::size_t from = at;
        at = longestMatch(symbol, from);
        if (at == m_frame.pixels.size() || at - from > kLongString)
            return m_matches.back().code;
        std::swap(m_matches, m_candidates);
        const double pixelsPerError = m_all.pixels / std::max(m_all.bits * m_frame.errorPerBit, kMinErrorCost);
        std::size_t best = m_candidates.size();
        double maxGain = std::numeric_limits<double>::lowest();
        for (std::size_t back = 0; back <= kMaxStepsBack && back < m_candidates.size(); ++back) {
            const std::size_t length = m_candidates.size() - back;
            const Branch &candidate = m_candidates[length - 1];
            const int lastSymbol = m_dictionary.lastSymbol(candidate.code);
            const std::size_t reached = longestMatch(firstSymbol(from + length, lastSymbol), from + length);
            const double gain = double(reached - from) - (candidate.error + m_matches.back().error) * pixelsPerError;
            if (gain > maxGain) {
                maxGain = gain;
                best = length;
            }
        }
        at = from + best;
        return m_candidates[best - 1].code;
    }

    /// The end of the longest match from `at` on that begins with `symbol`. m_matches has the best branch for each
    /// length.
    std::size_t longestMatch(int symbol, std::size_t at)
    {
        m_branchCount = 1;
        m_branches[0] = {symbol, 0};
        m_matches.assign(1, {symbol, 0});
        for (++at; at < m_frame.pixels.size(); ++at) {
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
        const int index = m_frame.indices[at];
        if (mayBeTransparent(at)) {
            keep(m_dictionary.child(branch.code, m_frame.transparent), branch.error);
            if (index != m_frame.transparent)
                keep(m_dictionary.child(branch.code, index), branch.error);
        } else if (m_frame.tolerance == 0) {
            keep(m_dictionary.child(branch.code, index), branch.error);
        } else {
            const QRgb color = m_frame.pixels[at];
            const int minError = index == m_frame.transparent ? 0 : distance(index, color);
            for (int code = m_dictionary.firstChild(branch.code); code != LzwDictionary::kNone;
                 code = m_dictionary.nextChild(code)) {
                const int symbol = m_dictionary.lastSymbol(code);
                const int error = symbol == m_frame.transparent ? -1 : distance(symbol, color);
                if (symbol == index || (error >= 0 && error <= m_frame.tolerance))
                    keep(code, branch.error + std::max(0, error - minError));
            }
        }
    }

    int distance(int symbol, QRgb color) const
    {
        const QRgb paletteColor = m_frame.palette[std::size_t(symbol)];
        const int red = qRed(paletteColor) - qRed(color);
        const int green = qGreen(paletteColor) - qGreen(color);
        const int blue = qBlue(paletteColor) - qBlue(color);
        return red * red + green * green + blue * blue;
    }

    /// Adds a branch, keeping those with the smallest error, in ascending order.
    void keep(int code, int error)
    {
        if (code == LzwDictionary::kNone)
            return;
        if (m_longerCount == kMaxBranches && m_longer[kMaxBranches - 1].error <= error)
            return;
        int place = m_longerCount < kMaxBranches ? m_longerCount++ : kMaxBranches - 1;
        for (; place > 0 && m_longer[std::size_t(place - 1)].error > error; --place)
            m_longer[std::size_t(place)] = m_longer[std::size_t(place - 1)];
        m_longer[std::size_t(place)] = {code, error};
    }

    /// Adds a string to the dictionary. A full dictionary is cleared once it compresses worse than while it was filled.
    void learn(int code, int symbol, std::size_t pixels)
    {
        Ratio &ratio = m_dictionary.isFull() ? m_recent : m_filling;
        for (Ratio *sum : {&ratio, &m_all}) {
            sum->pixels += double(pixels);
            sum->bits += m_width;
        }
        if (!m_dictionary.isFull()) {
            m_dictionary.add(code, symbol);
            if (m_dictionary.size() > 1 << m_width && m_width < LzwDictionary::kMaxCodeWidth)
                ++m_width;
        } else if (m_recent.bits >= kDictionaryCheckInterval * LzwDictionary::kMaxCodeWidth) {
            if (m_recent.pixels * m_filling.bits < m_filling.pixels * m_recent.bits)
                clear();
            m_recent = {};
        }
    }

    /// Compression ratio.
    struct Ratio {
        double pixels = 0;
        double bits = 0;
    };

    const IndexedFrame &m_frame;
    const std::atomic<bool> &m_cancelled;
    const int m_minimumSize;
    LzwCodeStream m_stream;
    LzwDictionary m_dictionary;
    int m_width = m_minimumSize + 1;
    Ratio m_filling;                 // while the dictionary was filled
    Ratio m_recent;                  // since it was checked last
    Ratio m_all{1, double(m_width)}; // starts as if one code had been written
    std::array<Branch, kMaxBranches> m_branches;
    std::array<Branch, kMaxBranches> m_longer;
    int m_branchCount = 0;
    int m_longerCount = 0;
    std::vector<Branch> m_matches;
    std::vector<Branch> m_candidates;
};

} // namespace

QByteArray gifImageData(const IndexedFrame &frame, const std::atomic<bool> &cancelled)
{
    return Compressor(frame, cancelled).run();
}

} // namespace av
