#include "avcodec/animation/ColourHistogram.h"

#include <utility>

namespace av
{

namespace
{

constexpr std::size_t MaxBins = 1 << 15;
constexpr int SlotBits = 16; // twice as many slots as bins keeps the chains short
constexpr quint32 NoKey = 0xffffffffu;

} // namespace

ColourHistogram::ColourHistogram(const PictureDelta &delta)
    : m_slots(std::size_t(1) << SlotBits, Slot{NoKey, -1})
{
    // Pixels come in runs, so the sum in hand is right more often than not.
    QRgb latest = 0;
    Sum run;
    const auto addRun = [&] {
        if (run.count == 0)
            return;
        if (m_sums.size() == MaxBins)
            coarsen();
        Sum &sum = sumOf(latest);
        sum.red += run.count * qRed(latest);
        sum.green += run.count * qGreen(latest);
        sum.blue += run.count * qBlue(latest);
        sum.count += run.count;
    };
    for (const QRgb pixel : delta.pixels) {
        if (!PictureDelta::isChanged(pixel))
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

int ColourHistogram::binOf(QRgb colour) const
{
    return slotOf(keyOf(colour)).bin;
}

quint32 ColourHistogram::keyOf(QRgb colour) const
{
    const quint32 kept = (0xffu >> m_shift) << m_shift;
    return colour & (kept << 16 | kept << 8 | kept);
}

const ColourHistogram::Slot &ColourHistogram::slotOf(quint32 key) const
{
    std::size_t place = (key * 2654435761u) >> (32 - SlotBits);
    while (m_slots[place].key != key && m_slots[place].key != NoKey)
        place = (place + 1) % m_slots.size();
    return m_slots[place];
}

ColourHistogram::Sum &ColourHistogram::sumOf(QRgb colour)
{
    const quint32 key = keyOf(colour);
    Slot &slot = const_cast<Slot &>(slotOf(key));
    if (slot.key == NoKey) {
        slot = {key, qint32(m_sums.size())};
        m_sums.emplace_back();
    }
    return m_sums[std::size_t(slot.bin)];
}

void ColourHistogram::coarsen()
{
    ++m_shift;
    m_slots.assign(m_slots.size(), Slot{NoKey, -1});
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
