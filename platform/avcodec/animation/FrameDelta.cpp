#include "avcodec/animation/FrameDelta.h"

#include <algorithm>

namespace av
{

namespace
{

/// Minimum length and number of color changes of an unchanged run that compresses better when transparent.
constexpr std::ptrdiff_t kBusyRun = 24;
constexpr int kBusyRunChanges = 2;

/// A delta of at most this many pixels is its own sample.
constexpr std::size_t kSmallDelta = 1 << 17;

/// Other samples consist of this many rows in every period.
constexpr int kSampledRows = 32;
constexpr int kSamplePeriod = 128;

} // namespace

std::vector<QRgb> FrameDelta::opaquePixels() const
{
    std::vector<QRgb> opaque = pixels;
    for (QRgb &pixel : opaque)
        pixel |= kChanged;
    return opaque;
}

std::vector<QRgb> FrameDelta::pixelsWithTransparency() const
{
    std::vector<QRgb> result = opaquePixels();
    const QRgb *row = pixels.data();
    const QRgb *const first = row;
    const QRgb *const last = row + pixels.size();
    for (const QRgb *end = row; row != last; row = end) {
        end += rect.width();
        for (const QRgb *pixel = row; pixel != end;) {
            const QRgb *const run = std::find_if_not(pixel, end, isChanged);
            pixel = std::find_if(run, end, isChanged);
            int colorChanges = 0;
            for (const QRgb *next = run + 1; next < pixel; ++next)
                colorChanges += next[0] != next[-1];
            if (pixel - run >= kBusyRun && colorChanges >= kBusyRunChanges)
                std::fill_n(result.begin() + (run - first), pixel - run, 0);
        }
    }
    return result;
}

FrameDelta FrameDelta::edges() const
{
    FrameDelta edges = *this;
    for (std::size_t i = 1; i < pixels.size(); ++i) {
        if (pixels[i] == pixels[i - 1])
            edges.pixels[i] = color(pixels[i]);
    }
    return edges;
}

FrameDelta FrameDelta::sample() const
{
    if (pixels.size() <= kSmallDelta || rect.height() <= kSamplePeriod)
        return *this;
    FrameDelta bands;
    const std::ptrdiff_t width = rect.width();
    for (int row = 0; row < rect.height(); row += kSamplePeriod) {
        const auto band = pixels.begin() + row * width;
        bands.pixels.insert(bands.pixels.end(), band, band + std::min(kSampledRows, rect.height() - row) * width);
    }
    bands.rect = QRect(0, 0, rect.width(), int(bands.pixels.size() / std::size_t(width)));
    return bands;
}

} // namespace av
