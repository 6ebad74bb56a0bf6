#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace av
{

/// One coded picture of a video file.
struct Sample {
    std::int64_t position = 0;     ///< byte offset in the file
    std::int64_t presentation = 0; ///< when it is shown, in the stream's time base
    int size = 0;                  ///< bytes
    int number = -1;               ///< its frame number; -1: decoded for others' sake and never shown
    bool keyframe = false;
    bool hidden = false; ///< an edit list leaves it out
};

/// Which sample holds which frame of a video, and where decoding may start to reach it.
class SampleIndex
{
public:
    SampleIndex() = default;

    /// Takes the samples in decoding order and numbers those that are shown in the order of their presentation.
    explicit SampleIndex(std::vector<Sample> samples);

    int sampleCount() const { return static_cast<int>(m_samples.size()); }
    const Sample &sample(int position) const { return m_samples[static_cast<std::size_t>(position)]; }

    /// Frames that are shown.
    int frameCount() const { return static_cast<int>(m_order.size()); }

    /// The sample that holds the frame.
    int sampleOf(int frame) const { return m_order[static_cast<std::size_t>(frame)]; }

    /// The last sample from which decoding yields the frame.
    int startFor(int frame) const;

    /// The keyframe before that sample; 0 when there is none.
    int keyframeBefore(int position) const;

    /// How many frames a decoder must hold back to put them into presentation order.
    int reorderDepth() const { return m_reorderDepth; }

private:
    void numberFrames();

    std::vector<Sample> m_samples; // in decoding order
    std::vector<int> m_order;      // frame number to sample
    std::vector<int> m_keyframes;  // samples where decoding may start, ascending; the first sample always may
    int m_reorderDepth = 0;
};

} // namespace av
