#pragma once

#include "avcodec/audio/AudioReader.h"
#include "avcodec/audio/PeakLimiter.h"

#include <QtGlobal>

#include <memory>
#include <vector>

namespace av
{

/// Sums several audio sources, each with its own gain, and keeps the sum within full scale.
class AudioMixer
{
public:
    static constexpr int kMaxRead = 8'192;

    /// `gain`: linear amplitude factor.
    void add(std::unique_ptr<AudioReader> reader, double gain);
    bool isEmpty() const { return m_sources.empty(); }

    /// Samples until the end of the longest source, estimated from the durations stated by the files.
    qint64 expectedLength() const;

    /// Reads the next `count` (at most kMaxRead) samples of each channel. Returns how many of them are within the
    /// sources; silence follows.
    int read(float *left, float *right, int count);

private:
    void readSum(float *left, float *right, int count);

    struct Source {
        std::unique_ptr<AudioReader> reader;
        float gain;
    };

    std::vector<Source> m_sources;
    PeakLimiter m_limiter;
    qint64 m_taken = 0;  // samples read from the sources, including silence after their end
    qint64 m_length = 0; // samples until the end of the longest source, as far as read
    qint64 m_given = 0;
};

} // namespace av
