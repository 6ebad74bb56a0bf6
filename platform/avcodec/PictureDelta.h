#pragma once

#include <QImage>
#include <QRect>
#include <QSize>

#include <vector>

/// What a picture changes of the one before it: the smallest rectangle around all changed pixels. It holds the true
/// colour of every pixel in there, and tells by the alpha which of them changed, so that a frame can be encoded
/// without any other picture at hand.
struct PictureDelta {
    static constexpr QRgb Changed = 0xff000000u;

    QRect rect;               ///< place in the picture
    std::vector<QRgb> pixels; ///< row by row; alpha 255: changed, 0: as in the picture before

    static bool isChanged(QRgb pixel) { return pixel & Changed; }
    static QRgb colour(QRgb pixel) { return pixel & ~Changed; }

    /// The pixels, all opaque.
    std::vector<QRgb> opaquePixels() const;

    /// The pixels, opaque but for unchanged ones, which are transparent (0) where that should help compression: in
    /// long runs of changing colours. Other runs look like their surroundings, which helps more.
    std::vector<QRgb> pixelsWithGaps() const;

    /// Some bands of a large picture, to try out on a fraction of it what is best for the whole; all of a small one.
    PictureDelta sample() const;
};

/// Keeps the latest picture and finds what the next one changes of it. Alpha plays no part: what is translucent
/// counts as painted on black.
class PictureComparer
{
public:
    /// The rectangles begin at multiples of `alignment` (1 or 2) in both directions.
    PictureComparer(QSize size, int alignment);

    /// Where the image (of the size given) differs from the latest picture. Empty: nowhere.
    QRect changedRect(const QImage &image) const;

    /// Makes the image the latest picture; `rect` is its changedRect(), or the whole picture for the first one.
    PictureDelta accept(const QImage &image, const QRect &rect);

    /// One delta for two in a row, where `latest` is the last one accepted.
    PictureDelta merged(const PictureDelta &older, const PictureDelta &latest) const;

    /// A delta of one pixel that changes nothing.
    PictureDelta nothing() const;

private:
    const QRgb *row(int y) const { return m_pixels.data() + std::size_t(y) * m_size.width(); }
    QRgb *row(int y) { return m_pixels.data() + std::size_t(y) * m_size.width(); }

    QSize m_size;
    int m_alignment;
    std::vector<QRgb> m_pixels; // alpha 0
    bool m_empty = true;
};
