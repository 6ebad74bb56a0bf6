#include "avcodec/decode/SampleIndex.h"

#include <algorithm>
#include <utility>

namespace av
{

SampleIndex::SampleIndex(std::vector<Sample> samples)
    : m_samples(std::move(samples))
{
    for (int i = 0; i < sampleCount(); ++i) {
        if (i == 0 || sample(i).isKeyframe)
            m_keyframes.push_back(i);
        if (!sample(i).isHidden)
            m_order.push_back(i);
    }
    numberFrames();
}

void SampleIndex::numberFrames()
{
    const std::vector<int> decodingOrder = m_order;
    // Stable: with a coarse time base, frames may have equal timestamps; these keep the order of the file.
    std::stable_sort(m_order.begin(), m_order.end(),
                     [this](int a, int b) { return sample(a).presentationTime < sample(b).presentationTime; });
    for (int frame = 0; frame < frameCount(); ++frame)
        m_samples[static_cast<std::size_t>(sampleOf(frame))].frame = frame;
    // A frame is held back until every frame shown before it is decoded. The largest distance by which a frame comes
    // later in decoding order than in presentation order is therefore the number of frames to hold back.
    for (int i = 0; i < frameCount(); ++i)
        m_reorderDepth = std::max(m_reorderDepth, i - sample(decodingOrder[static_cast<std::size_t>(i)]).frame);
}

int SampleIndex::startFor(int frame) const
{
    int start = keyframeBefore(sampleOf(frame) + 1);
    // In an open GOP, the frames that follow the keyframe but are shown before it need the previous GOP.
    while (start > 0 && sample(start).frame > frame)
        start = keyframeBefore(start);
    return start;
}

int SampleIndex::keyframeBefore(int sampleIndex) const
{
    const auto next = std::lower_bound(m_keyframes.begin(), m_keyframes.end(), sampleIndex);
    return next == m_keyframes.begin() ? 0 : *std::prev(next);
}

} // namespace av
