#pragma once

#include "avcodec/animation/FrameDelta.h"

#include <QImage>
#include <QSize>

#include <array>
#include <optional>
#include <vector>

namespace av
{

/// Keeps the last frame of an animation and finds what the next one changes. Translucent pixels are blended with black.
class FrameComparer
{
public:
    /// Rectangles begin at multiples of `alignment` (1 or 2) in both directions.
    FrameComparer(QSize size, int alignment);

    /// The bounding rectangle of all pixels in which the image differs from the last frame; empty if there are none.
    QRect changedRect(const QImage &image) const;

    /// Makes the image the last frame. `rect` is its changedRect(), or the whole image for the first frame.
    FrameDelta accept(const QImage &image, const QRect &rect);

    /// Combines two consecutive deltas into one. `latest` is the last one accepted.
    FrameDelta merged(const FrameDelta &older, const FrameDelta &latest) const;

    /// A delta of one unchanged pixel.
    FrameDelta unchanged() const;

private:
    const QRgb *row(int y) const { return m_pixels.data() + std::size_t(y) * m_size.width(); }
    QRgb *row(int y) { return m_pixels.data() + std::size_t(y) * m_size.width(); }

    std::optional<QRgb> unusedColor() const;

    QSize m_size;
    int m_alignment;
    std::vector<QRgb> m_pixels;     // alpha 0
    std::array<bool, 8> m_isUsed{}; // per candidate for the unused color: whether a pixel has had it
    bool m_empty = true;
};

} // namespace av
