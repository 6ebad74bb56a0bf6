#include "avcodec/animation/png/PngFilter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <vector>

namespace av
{

namespace
{

enum Filter : quint8 { None, Sub, Up, Average, Paeth, FilterCount };

quint8 paethPredictor(int left, int above, int aboveLeft)
{
    const int toLeft = std::abs(above - aboveLeft);
    const int toAbove = std::abs(left - aboveLeft);
    const int toAboveLeft = std::abs(left + above - 2 * aboveLeft);
    const int nearest = toAbove <= toAboveLeft ? above : aboveLeft;
    const int distance = toAbove <= toAboveLeft ? toAbove : toAboveLeft;
    return quint8(toLeft <= distance ? left : nearest);
}

/// Estimates the compressed size of a row from the entropy of its bytes.
class RowCost
{
public:
    explicit RowCost(int rowBytes)
        : m_countLogCount(std::size_t(rowBytes) + 1)
    {
        for (std::size_t count = 2; count < m_countLogCount.size(); ++count)
            m_countLogCount[count] = float(double(count) * std::log2(double(count)));
    }

    float bits(const quint8 *row, int count) const
    {
        // With four tables, the increments for equal neighbors do not depend on each other.
        std::array<std::array<quint32, 256>, 4> counts{};
        int i = 0;
        for (; i + 4 <= count; i += 4)
            for (std::size_t k = 0; k < 4; ++k)
                ++counts[k][row[i + int(k)]];
        for (; i < count; ++i)
            ++counts[0][row[i]];
        float bits = m_countLogCount[std::size_t(count)];
        for (std::size_t value = 0; value < 256; ++value)
            bits -= m_countLogCount[counts[0][value] + counts[1][value] + counts[2][value] + counts[3][value]];
        return bits;
    }

private:
    std::vector<float> m_countLogCount; // n log2(n) for each n
};

/// Both input rows are preceded by `pixelBytes` zero bytes.
void applyFilter(Filter filter, const quint8 *row, const quint8 *above, int rowBytes, int pixelBytes, quint8 *out)
{
    const quint8 *left = row - pixelBytes;
    const quint8 *aboveLeft = above - pixelBytes;
    switch (filter) {
    case Sub:
        for (int i = 0; i < rowBytes; ++i)
            out[i] = quint8(row[i] - left[i]);
        break;
    case Up:
        for (int i = 0; i < rowBytes; ++i)
            out[i] = quint8(row[i] - above[i]);
        break;
    case Average:
        for (int i = 0; i < rowBytes; ++i)
            out[i] = quint8(row[i] - (left[i] + above[i]) / 2);
        break;
    case Paeth:
        for (int i = 0; i < rowBytes; ++i)
            out[i] = quint8(row[i] - paethPredictor(left[i], above[i], aboveLeft[i]));
        break;
    default:
        std::memcpy(out, row, std::size_t(rowBytes));
    }
}

} // namespace

QByteArray png::filteredRows(const QByteArray &pixels, int rowBytes, int pixelBytes, Filtering filtering)
{
    const int rows = pixels.size() / rowBytes;
    const int filters = filtering == Filtering::Adaptive ? FilterCount : None + 1;
    QByteArray out(pixels.size() + rows, Qt::Uninitialized);
    auto *to = reinterpret_cast<quint8 *>(out.data());
    const RowCost cost(rowBytes);
    // Zeros stand for the row above the first and for the pixel left of each row.
    std::vector<quint8> above(std::size_t(pixelBytes + rowBytes));
    std::vector<quint8> current(above.size());
    std::vector<quint8> attempt(std::size_t(rowBytes + 1));
    std::vector<quint8> best(attempt.size());
    for (int row = 0; row < rows; ++row) {
        std::memcpy(current.data() + pixelBytes, pixels.constData() + std::size_t(row) * rowBytes,
                    std::size_t(rowBytes));
        float minBits = std::numeric_limits<float>::max();
        for (int filter = None; filter < filters; ++filter) {
            attempt[0] = quint8(filter);
            applyFilter(Filter(filter), current.data() + pixelBytes, above.data() + pixelBytes, rowBytes, pixelBytes,
                        attempt.data() + 1);
            const float bits = filters > 1 ? cost.bits(attempt.data() + 1, rowBytes) : 0;
            if (bits < minBits) {
                minBits = bits;
                std::swap(attempt, best);
            }
        }
        to = std::copy(best.begin(), best.end(), to);
        std::swap(above, current);
    }
    return out;
}

} // namespace av
