#include "screen/windows/ImageChanges.h"

#include <QVector>

#include <algorithm>
#include <cstring>

namespace kel
{

namespace
{

// Large enough that a scrolled page yields a few dozen rectangles, small enough that a blinking caret yields a small
// one.
constexpr int kBandHeight = 32;

struct Columns {
    int first;
    int last;

    bool isEmpty() const { return first > last; }
};

const QRgb *line(const QImage &image, int y)
{
    return reinterpret_cast<const QRgb *>(image.constScanLine(y));
}

/// The range of columns in which the lines [top, bottom) differ.
Columns changedColumns(const QImage &before, const QImage &after, int top, int bottom)
{
    const int width = after.width();
    Columns changed{width, -1};
    for (int y = top; y < bottom; ++y) {
        const QRgb *old = line(before, y);
        const QRgb *now = line(after, y);
        if (std::memcmp(old, now, std::size_t(width) * sizeof(QRgb)) == 0)
            continue;
        int x = 0;
        while (x < changed.first && old[x] == now[x])
            ++x;
        changed.first = x;
        x = width - 1;
        while (x > changed.last && old[x] == now[x])
            --x;
        changed.last = x;
    }
    return changed;
}

} // namespace

QRegion changedRegion(const QImage &before, const QImage &after)
{
    QVector<QRect> rects;
    for (int top = 0; top < after.height(); top += kBandHeight) {
        const int bottom = std::min(top + kBandHeight, after.height());
        const Columns columns = changedColumns(before, after, top, bottom);
        if (!columns.isEmpty())
            rects.append(QRect(QPoint(columns.first, top), QPoint(columns.last, bottom - 1)));
    }
    QRegion region;
    region.setRects(rects.constData(), rects.size());
    return region;
}

} // namespace kel
