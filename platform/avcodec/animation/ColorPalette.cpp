#include "avcodec/animation/ColorPalette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace av
{

namespace
{

using Bin = ColorHistogram::Bin;

/// Rounds of moving each color to the mean of the pixels it represents. More are not worth the time.
constexpr int kRefinements = 2;

constexpr std::array<float Bin::*, 3> kChannels{&Bin::red, &Bin::green, &Bin::blue};

bool lessGreen(const Bin &a, const Bin &b)
{
    return a.green < b.green;
}

Bin binOf(QRgb color)
{
    return {float(qRed(color)), float(qGreen(color)), float(qBlue(color)), 0};
}

/// Squared, summed over the channels.
float distance(QRgb a, QRgb b)
{
    const int red = qRed(a) - qRed(b);
    const int green = qGreen(a) - qGreen(b);
    const int blue = qBlue(a) - qBlue(b);
    return float(red * red + green * green + blue * blue);
}

/// The index of the nearest color to a bin, and its squared distance. The colors are sorted by green: where the
/// distance in green alone exceeds the best one found, the search can stop.
std::pair<int, float> nearest(const std::vector<Bin> &colors, const Bin &bin)
{
    const auto from = std::lower_bound(colors.begin(), colors.end(), bin, lessGreen);
    int best = -1;
    float bestDistance = std::numeric_limits<float>::max();
    const auto consider = [&](std::vector<Bin>::const_iterator color) {
        const float green = (color->green - bin.green) * (color->green - bin.green);
        if (green >= bestDistance)
            return false;
        const float red = color->red - bin.red;
        const float blue = color->blue - bin.blue;
        const float distance = green + red * red + blue * blue;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = int(color - colors.begin());
        }
        return true;
    };
    auto up = from;
    auto down = from;
    bool goUp = true;
    bool goDown = true;
    while (goUp || goDown) {
        goUp = goUp && up != colors.end() && consider(up++);
        goDown = goDown && down != colors.begin() && consider(--down);
    }
    return {best, bestDistance};
}

/// A group of bins that are represented by one color of the palette.
struct Box {
    std::vector<Bin>::iterator begin;
    std::vector<Bin>::iterator end;
    float Bin::*widest = &Bin::green; // channel with the largest variance
    double error = 0;                 // total squared distance of the pixels to the mean
    Bin mean;

    Box(std::vector<Bin>::iterator first, std::vector<Bin>::iterator last)
        : begin(first)
        , end(last)
    {
        double count = 0;
        for (auto bin = begin; bin != end; ++bin)
            count += bin->count;
        mean.count = float(count);
        double most = -1;
        for (const auto channel : kChannels) {
            double sum = 0;
            for (auto bin = begin; bin != end; ++bin)
                sum += double((*bin).*channel) * bin->count;
            const double center = sum / count;
            double variance = 0;
            for (auto bin = begin; bin != end; ++bin)
                variance += ((*bin).*channel - center) * ((*bin).*channel - center) * bin->count;
            mean.*channel = float(center);
            error += variance;
            if (variance > most) {
                most = variance;
                widest = channel;
            }
        }
    }

    bool canSplit() const { return end - begin > 1; }

    /// The split along the widest channel that leaves the least error. Sorts the bins.
    std::vector<Bin>::iterator bestCut()
    {
        const auto channel = widest;
        std::sort(begin, end, [channel](const Bin &a, const Bin &b) { return a.*channel < b.*channel; });
        const double allCount = mean.count;
        const double allSum = double(mean.*channel) * allCount;
        double count = 0;
        double sum = 0;
        double most = -1;
        auto cut = begin + 1;
        for (auto bin = begin; bin != end - 1; ++bin) {
            count += bin->count;
            sum += double((*bin).*channel) * bin->count;
            const double gain = sum * sum / count + (allSum - sum) * (allSum - sum) / (allCount - count);
            if (gain > most) {
                most = gain;
                cut = bin + 1;
            }
        }
        return cut;
    }
};

/// Splits the box with the largest error until there are `limit` boxes. Returns their means.
std::vector<Bin> splitIntoBoxes(std::vector<Bin> bins, std::size_t limit)
{
    const auto lessError = [](const Box &a, const Box &b) { return a.error < b.error; };
    std::vector<Box> boxes{Box(bins.begin(), bins.end())}; // a heap
    std::vector<Bin> means;
    while (!boxes.empty() && boxes.size() + means.size() < limit) {
        std::pop_heap(boxes.begin(), boxes.end(), lessError);
        Box box = boxes.back();
        boxes.pop_back();
        if (!box.canSplit()) {
            means.push_back(box.mean);
            continue;
        }
        const auto cut = box.bestCut();
        for (const Box &half : {Box(box.begin, cut), Box(cut, box.end)}) {
            boxes.push_back(half);
            std::push_heap(boxes.begin(), boxes.end(), lessError);
        }
    }
    for (const Box &box : boxes)
        means.push_back(box.mean);
    return means;
}

/// Moves each color to the mean of the pixels it represents.
void refine(std::vector<Bin> &colors, const std::vector<Bin> &bins)
{
    struct Sum {
        double red = 0, green = 0, blue = 0, count = 0;
    };
    for (int round = 0; round < kRefinements; ++round) {
        std::sort(colors.begin(), colors.end(), lessGreen);
        std::vector<Sum> sums(colors.size());
        for (const Bin &bin : bins) {
            Sum &sum = sums[std::size_t(nearest(colors, bin).first)];
            sum.red += double(bin.red) * bin.count;
            sum.green += double(bin.green) * bin.count;
            sum.blue += double(bin.blue) * bin.count;
            sum.count += bin.count;
        }
        for (std::size_t i = 0; i < colors.size(); ++i) {
            const Sum &sum = sums[i];
            if (sum.count > 0)
                colors[i] = {float(sum.red / sum.count), float(sum.green / sum.count), float(sum.blue / sum.count),
                             float(sum.count)};
        }
    }
}

} // namespace

ColorPalette ColorPalette::bestFor(const ColorHistogram &histogram, int limit)
{
    std::vector<Bin> best = histogram.bins();
    if (best.size() > std::size_t(limit)) {
        best = splitIntoBoxes(std::move(best), std::size_t(limit));
        refine(best, histogram.bins());
    }
    std::vector<QRgb> colors;
    colors.reserve(best.size());
    for (const Bin &bin : best)
        colors.push_back(qRgb(int(std::lround(bin.red)), int(std::lround(bin.green)), int(std::lround(bin.blue))));
    return ColorPalette(std::move(colors));
}

PaletteMatch ColorPalette::match(const ColorHistogram &histogram) const
{
    std::vector<quint8> order(m_colors.size());
    std::iota(order.begin(), order.end(), quint8(0));
    std::sort(order.begin(), order.end(),
              [this](quint8 a, quint8 b) { return qGreen(m_colors[a]) < qGreen(m_colors[b]); });
    std::vector<Bin> colors;
    colors.reserve(m_colors.size());
    for (const quint8 index : order)
        colors.push_back(binOf(m_colors[index]));
    PaletteMatch match;
    double error = 0;
    double count = 0;
    for (const Bin &bin : histogram.bins()) {
        const auto [nearestIndex, distance] = nearest(colors, bin);
        match.indexOfBin.push_back(order[std::size_t(nearestIndex)]);
        error += double(distance) * bin.count;
        count += bin.count;
    }
    match.meanError = count > 0 ? error / count : 0;
    return match;
}

ColorPalette ColorPalette::ordered(const ColorHistogram &histogram) const
{
    std::vector<double> weights(m_colors.size());
    const PaletteMatch all = match(histogram);
    for (std::size_t i = 0; i < all.indexOfBin.size(); ++i)
        weights[all.indexOfBin[i]] += double(histogram.bins()[i].count);

    // Greedily picks the color that reduces the error of those picked before it most.
    constexpr float kMaxDistance = 3 * 255 * 255;
    std::vector<float> errors(m_colors.size(), kMaxDistance);
    std::vector<bool> isTaken(m_colors.size());
    std::vector<QRgb> order;
    while (order.size() < m_colors.size()) {
        double most = -1;
        std::size_t best = 0;
        for (std::size_t candidate = 0; candidate < m_colors.size(); ++candidate) {
            if (isTaken[candidate])
                continue;
            double gain = 0;
            for (std::size_t i = 0; i < m_colors.size(); ++i)
                gain += weights[i] * std::max(0.0f, errors[i] - distance(m_colors[i], m_colors[candidate]));
            if (gain > most) {
                most = gain;
                best = candidate;
            }
        }
        isTaken[best] = true;
        order.push_back(m_colors[best]);
        for (std::size_t i = 0; i < m_colors.size(); ++i)
            errors[i] = std::min(errors[i], distance(m_colors[i], m_colors[best]));
    }
    return ColorPalette(std::move(order));
}

ColorPalette ColorPalette::prefix(std::size_t count) const
{
    return ColorPalette({m_colors.begin(), m_colors.begin() + std::ptrdiff_t(std::min(count, m_colors.size()))});
}

} // namespace av
