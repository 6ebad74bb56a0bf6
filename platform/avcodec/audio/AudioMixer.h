#pragma once

#include "avcodec/audio/AudioReader.h"
#include "avcodec/audio/PeakLimiter.h"

#include <QtGlobal>

#include <memory>
#include <vector>

namespace av
{

/// The sum of several sounds, each amplified as told, kept within full scale.
class AudioMixer
{
public:
    /// `gain`: the factor of its level.
    void add(std::unique_ptr<AudioReader> reader, double gain);
    bool isEmpty() const { return m_sources.empty(); }

    /// Samples after which all sources have ended, as far as their files tell.
    qint64 expectedLength() const;

    /// The next `count` samples of both channels, at most kMaxRead. Returns how many of them are sound; silence
    /// follows.
    int read(float *left, float *right, int count);
    static constexpr int kMaxRead = 8'192;

private:
    void readSum(float *left, float *right, int count);

    struct Source {
        std::unique_ptr<AudioReader> reader;
        float gain;
    };

    std::vector<Source> m_sources;
    PeakLimiter m_limiter;
    qint64 m_taken = 0;  // from the sources, silence after their end included
    qint64 m_length = 0; // of the sources' sound
    qint64 m_given = 0;
};

} // namespace av
