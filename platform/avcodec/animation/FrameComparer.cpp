#include "avcodec/animation/FrameComparer.h"

#include "avcodec/RgbPixels.h"

#include <algorithm>
#include <cstring>

namespace av
{

namespace
{

/// The candidates for the unused color: this garish green, which screens hardly ever show, and the ones that differ
/// from it only in the lowest bits.
constexpr QRgb kFirstCandidate = 0x02fd00;

const QRgb *scanLine(const QImage &image, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y));
}

bool sameColor(QRgb a, QRgb b)
{
    return FrameDelta::color(a ^ b) == 0;
}

/// Compares like memcmp(), but ignores alpha; two pixels at a time, as most rows are equal to their end.
bool sameColors(const QRgb *a, const QRgb *b, int count)
{
    constexpr quint64 kColorMask = Q_UINT64_C(0x00ffffff00ffffff);
    constexpr int kBlock = 64;
    int i = 0;
    for (; i + kBlock <= count; i += kBlock) {
        quint64 difference = 0;
        for (int k = 0; k < kBlock; k += 2) {
            quint64 left, right;
            std::memcpy(&left, a + i + k, sizeof left);
            std::memcpy(&right, b + i + k, sizeof right);
            difference |= left ^ right;
        }
        if (difference & kColorMask)
            return false;
    }
    for (; i < count; ++i) {
        if (!sameColor(a[i], b[i]))
            return false;
    }
    return true;
}

} // namespace

FrameComparer::FrameComparer(QSize size, int alignment)
    : m_size(size)
    , m_alignment(alignment)
    , m_pixels(std::size_t(size.width()) * size.height())
{
}

QRect FrameComparer::changedRect(const QImage &image) const
{
    const QImage plain = withRgbPixels(image);
    const int width = m_size.width();
    const int height = m_size.height();

    int top = 0;
    while (top < height && sameColors(row(top), scanLine(plain, top), width))
        ++top;
    if (top == height)
        return {};
    int bottom = height - 1;
    while (sameColors(row(bottom), scanLine(plain, bottom), width))
        --bottom;

    int left = width;
    int right = -1;
    for (int y = top; y <= bottom; ++y) {
        const QRgb *before = row(y);
        const QRgb *now = scanLine(plain, y);
        left = int(std::mismatch(before, before + left, now, sameColor).first - before);
        int x = width - 1;
        while (x > right && sameColor(before[x], now[x]))
            --x;
        right = x;
    }
    left -= left % m_alignment;
    top -= top % m_alignment;
    return {QPoint(left, top), QPoint(right, bottom)};
}

FrameDelta FrameComparer::accept(const QImage &image, const QRect &rect)
{
    const QImage plain = withRgbPixels(image);
    FrameDelta delta;
    delta.rect = rect;
    delta.pixels.reserve(std::size_t(rect.width()) * rect.height());
    for (int y = rect.top(); y <= rect.bottom(); ++y) {
        QRgb *before = row(y);
        const QRgb *now = scanLine(plain, y);
        for (int x = rect.left(); x <= rect.right(); ++x) {
            const QRgb color = FrameDelta::color(now[x]);
            delta.pixels.push_back(!m_empty && color == before[x] ? color : color | FrameDelta::kChanged);
            before[x] = color;
            if (const QRgb candidate = color ^ kFirstCandidate; candidate < m_isUsed.size())
                m_isUsed[candidate] = true;
        }
    }
    m_empty = false;
    delta.unusedColor = unusedColor();
    return delta;
}

FrameDelta FrameComparer::merged(const FrameDelta &older, const FrameDelta &latest) const
{
    FrameDelta all;
    all.rect = older.rect.united(latest.rect);
    const std::size_t width = all.rect.width();
    all.pixels.resize(width * all.rect.height());
    for (int y = 0; y < all.rect.height(); ++y)
        std::copy_n(row(all.rect.top() + y) + all.rect.left(), width, all.pixels.begin() + y * width);
    for (const FrameDelta *part : {&older, &latest}) {
        auto pixel = part->pixels.begin();
        const QRect place = part->rect.translated(-all.rect.topLeft());
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x)
                all.pixels[y * width + x] |= *pixel++ & FrameDelta::kChanged;
        }
    }
    all.unusedColor = unusedColor();
    return all;
}

FrameDelta FrameComparer::unchanged() const
{
    return {QRect(0, 0, 1, 1), {m_pixels.front()}, unusedColor()};
}

std::optional<QRgb> FrameComparer::unusedColor() const
{
    const auto unused = std::find(m_isUsed.begin(), m_isUsed.end(), false);
    if (unused == m_isUsed.end())
        return std::nullopt;
    return kFirstCandidate + QRgb(unused - m_isUsed.begin());
}

} // namespace av
