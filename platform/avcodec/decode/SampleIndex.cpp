#include "avcodec/decode/SampleIndex.h"

#include <algorithm>
#include <utility>

namespace av
{

SampleIndex::SampleIndex(std::vector<Sample> samples)
    : m_samples(std::move(samples))
{
    for (int i = 0; i < sampleCount(); ++i) {
        if (i == 0 || sample(i).keyframe)
            m_keyframes.push_back(i);
        if (!sample(i).hidden)
            m_order.push_back(i);
    }
    numberFrames();
}

void SampleIndex::numberFrames()
{
    const std::vector<int> decodingOrder = m_order;
    // Stable: frames of one time, which a coarse time base can make, keep the order of the file.
    std::stable_sort(m_order.begin(), m_order.end(),
                     [this](int a, int b) { return sample(a).presentation < sample(b).presentation; });
    for (int frame = 0; frame < frameCount(); ++frame)
        m_samples[static_cast<std::size_t>(sampleOf(frame))].number = frame;
    // The frame that most others overtake has all that are shown before it decoded before it too, so that its distance
    // from its place in decoding order is the depth.
    for (int i = 0; i < frameCount(); ++i)
        m_reorderDepth = std::max(m_reorderDepth, i - sample(decodingOrder[static_cast<std::size_t>(i)]).number);
}

int SampleIndex::startFor(int frame) const
{
    int start = keyframeBefore(sampleOf(frame) + 1);
    // In an open group of pictures the frames that follow the keyframe but are shown before it need the group before.
    while (start > 0 && sample(start).number > frame)
        start = keyframeBefore(start);
    return start;
}

int SampleIndex::keyframeBefore(int position) const
{
    const auto next = std::lower_bound(m_keyframes.begin(), m_keyframes.end(), position);
    return next == m_keyframes.begin() ? 0 : *std::prev(next);
}

} // namespace av
