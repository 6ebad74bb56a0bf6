#include "avcodec/animation/PictureDelta.h"

#include <algorithm>

namespace av
{

namespace
{

/// How long an unchanged run has to be, and how often its colour has to change, to be better off transparent.
constexpr std::ptrdiff_t BusyRun = 24;
constexpr int BusyRunChanges = 2;

/// Pixels of a picture that is its own sample.
constexpr std::size_t SmallPicture = 1 << 17;

/// Other samples have this many rows out of every so many.
constexpr int SampledRows = 32;
constexpr int SamplePeriod = 128;

} // namespace

std::vector<QRgb> PictureDelta::opaquePixels() const
{
    std::vector<QRgb> opaque = pixels;
    for (QRgb &pixel : opaque)
        pixel |= Changed;
    return opaque;
}

std::vector<QRgb> PictureDelta::pixelsWithGaps() const
{
    std::vector<QRgb> gapped = opaquePixels();
    const QRgb *row = pixels.data();
    const QRgb *const first = row;
    const QRgb *const last = row + pixels.size();
    for (const QRgb *end = row; row != last; row = end) {
        end += rect.width();
        for (const QRgb *pixel = row; pixel != end;) {
            const QRgb *const run = std::find_if_not(pixel, end, isChanged);
            pixel = std::find_if(run, end, isChanged);
            int colourChanges = 0;
            for (const QRgb *next = run + 1; next < pixel; ++next)
                colourChanges += next[0] != next[-1];
            if (pixel - run >= BusyRun && colourChanges >= BusyRunChanges)
                std::fill_n(gapped.begin() + (run - first), pixel - run, 0);
        }
    }
    return gapped;
}

PictureDelta PictureDelta::edges() const
{
    PictureDelta edges = *this;
    for (std::size_t i = 1; i < pixels.size(); ++i) {
        if (pixels[i] == pixels[i - 1])
            edges.pixels[i] = colour(pixels[i]);
    }
    return edges;
}

PictureDelta PictureDelta::sample() const
{
    if (pixels.size() <= SmallPicture || rect.height() <= SamplePeriod)
        return *this;
    PictureDelta bands;
    const std::ptrdiff_t width = rect.width();
    for (int row = 0; row < rect.height(); row += SamplePeriod) {
        const auto band = pixels.begin() + row * width;
        bands.pixels.insert(bands.pixels.end(), band, band + std::min(SampledRows, rect.height() - row) * width);
    }
    bands.rect = QRect(0, 0, rect.width(), int(bands.pixels.size() / std::size_t(width)));
    return bands;
}

} // namespace av
