#include "avcodec/animation/ColorHistogram.h"

#include <utility>

namespace av
{

namespace
{

constexpr std::size_t kMaxBins = 1 << 15;
constexpr int kSlotBits = 16; // of the hash table: twice as many slots as bins keeps collision chains short
constexpr quint32 kNoKey = 0xffffffffu;

} // namespace

ColorHistogram::ColorHistogram(const FrameDelta &delta)
    : m_slots(std::size_t(1) << kSlotBits, Slot{kNoKey, -1})
{
    // Equal pixels mostly come in runs: one lookup per run.
    QRgb latest = 0;
    Sum run;
    const auto addRun = [&] {
        if (run.count == 0)
            return;
        if (m_sums.size() == kMaxBins)
            coarsen();
        Sum &sum = sumOf(latest);
        sum.red += run.count * qRed(latest);
        sum.green += run.count * qGreen(latest);
        sum.blue += run.count * qBlue(latest);
        sum.count += run.count;
    };
    for (const QRgb pixel : delta.pixels) {
        if (!FrameDelta::isChanged(pixel))
            continue;
        if (pixel != latest) {
            addRun();
            run.count = 0;
            latest = pixel;
        }
        ++run.count;
    }
    addRun();

    m_bins.reserve(m_sums.size());
    for (const Sum &sum : m_sums) {
        const double count = double(sum.count);
        m_pixelCount += count;
        m_bins.push_back({float(double(sum.red) / count), float(double(sum.green) / count),
                          float(double(sum.blue) / count), float(count)});
    }
}

int ColorHistogram::binOf(QRgb color) const
{
    return m_slots[slotIndexOf(keyOf(color))].bin;
}

quint32 ColorHistogram::keyOf(QRgb color) const
{
    const quint32 kept = (0xffu >> m_shift) << m_shift;
    return color & (kept << 16 | kept << 8 | kept);
}

std::size_t ColorHistogram::slotIndexOf(quint32 key) const
{
    std::size_t index = (key * 2654435761u) >> (32 - kSlotBits);
    while (m_slots[index].key != key && m_slots[index].key != kNoKey)
        index = (index + 1) % m_slots.size();
    return index;
}

ColorHistogram::Sum &ColorHistogram::sumOf(QRgb color)
{
    const quint32 key = keyOf(color);
    Slot &slot = m_slots[slotIndexOf(key)];
    if (slot.key == kNoKey) {
        slot = {key, qint32(m_sums.size())};
        m_sums.emplace_back();
    }
    return m_sums[std::size_t(slot.bin)];
}

void ColorHistogram::coarsen()
{
    ++m_shift;
    m_slots.assign(m_slots.size(), Slot{kNoKey, -1});
    const std::vector<Sum> finer = std::exchange(m_sums, {});
    for (const Sum &part : finer) {
        Sum &sum = sumOf(qRgb(int(part.red / part.count), int(part.green / part.count), int(part.blue / part.count)));
        sum.red += part.red;
        sum.green += part.green;
        sum.blue += part.blue;
        sum.count += part.count;
    }
}

} // namespace av
