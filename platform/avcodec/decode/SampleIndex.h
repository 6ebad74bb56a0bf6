#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace av
{

/// One coded frame of a video file.
struct Sample {
    std::int64_t offset = 0;           ///< of its first byte in the file
    std::int64_t presentationTime = 0; ///< in the stream's time base
    int size = 0;                      ///< bytes
    int frame = -1;                    ///< frame number in presentation order; -1: not shown
    bool isKeyframe = false;
    bool isHidden = false; ///< excluded by an edit list: only decoded as a reference for other frames
};

/// Maps frames to samples, and to the samples at which decoding has to start. Samples are numbered in decoding order.
class SampleIndex
{
public:
    SampleIndex() = default;

    /// Takes the samples in decoding order and assigns frame numbers to those that are shown.
    explicit SampleIndex(std::vector<Sample> samples);

    int sampleCount() const { return static_cast<int>(m_samples.size()); }
    const Sample &sample(int index) const { return m_samples[static_cast<std::size_t>(index)]; }

    /// Number of frames that are shown.
    int frameCount() const { return static_cast<int>(m_order.size()); }

    /// Index of the sample that holds the frame.
    int sampleOf(int frame) const { return m_order[static_cast<std::size_t>(frame)]; }

    /// Index of the last sample from which decoding produces the frame.
    int startFor(int frame) const;

    /// Index of the last keyframe before a sample; 0 if there is none.
    int keyframeBefore(int sampleIndex) const;

    /// Number of frames a decoder has to hold back to output them in presentation order.
    int reorderDepth() const { return m_reorderDepth; }

private:
    void numberFrames();

    std::vector<Sample> m_samples; // in decoding order
    std::vector<int> m_order;      // sample of each frame
    std::vector<int> m_keyframes;  // samples at which decoding can start, ascending; always includes the first
    int m_reorderDepth = 0;
};

} // namespace av
