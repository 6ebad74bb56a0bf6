#pragma once

#include "avcodec/animation/FrameDelta.h"

#include <QImage>
#include <QSize>

#include <array>
#include <optional>
#include <vector>

namespace av
{

/// Keeps the latest picture and finds what the next one changes of it. Alpha plays no part: what is translucent
/// counts as painted on black.
class FrameComparer
{
public:
    /// The rectangles begin at multiples of `alignment` (1 or 2) in both directions.
    FrameComparer(QSize size, int alignment);

    /// Where the image (of the size given) differs from the latest picture. Empty: nowhere.
    QRect changedRect(const QImage &image) const;

    /// Makes the image the latest picture; `rect` is its changedRect(), or the whole picture for the first one.
    FrameDelta accept(const QImage &image, const QRect &rect);

    /// One delta for two in a row, where `latest` is the last one accepted.
    FrameDelta merged(const FrameDelta &older, const FrameDelta &latest) const;

    /// A delta of one pixel that changes nothing.
    FrameDelta nothing() const;

private:
    const QRgb *row(int y) const { return m_pixels.data() + std::size_t(y) * m_size.width(); }
    QRgb *row(int y) { return m_pixels.data() + std::size_t(y) * m_size.width(); }

    std::optional<QRgb> unusedColor() const;

    QSize m_size;
    int m_alignment;
    std::vector<QRgb> m_pixels;     // alpha 0
    std::array<bool, 8> m_isUsed{}; // of some colors that screens hardly ever show: whether there was such a pixel
    bool m_empty = true;
};

} // namespace av
