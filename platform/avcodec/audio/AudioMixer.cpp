#include "avcodec/audio/AudioMixer.h"

#include <algorithm>
#include <utility>

namespace av
{

void AudioMixer::add(std::unique_ptr<AudioReader> reader, double gain)
{
    m_sources.push_back({std::move(reader), float(gain)});
}

qint64 AudioMixer::expectedLength() const
{
    qint64 length = 0;
    for (const Source &source : m_sources)
        length = std::max(length, source.reader->expectedLength());
    return length;
}

int AudioMixer::read(float *left, float *right, int count)
{
    if (m_taken == 0) {
        // Compensates the latency of the limiter, so that the output begins with the first sample.
        std::vector<float> first(PeakLimiter::kDelay);
        std::vector<float> second(PeakLimiter::kDelay);
        readSum(first.data(), second.data(), PeakLimiter::kDelay);
        m_limiter.process(first.data(), second.data(), PeakLimiter::kDelay);
    }
    readSum(left, right, count);
    m_limiter.process(left, right, count);
    const int available = int(std::clamp<qint64>(m_length - m_given, 0, count));
    m_given += count;
    return available;
}

void AudioMixer::readSum(float *left, float *right, int count)
{
    float sourceLeft[kMaxRead];
    float sourceRight[kMaxRead];
    std::fill_n(left, count, 0.0F);
    std::fill_n(right, count, 0.0F);
    int longest = 0;
    for (const Source &source : m_sources) {
        const int length = source.reader->read(sourceLeft, sourceRight, count);
        for (int i = 0; i < length; ++i) {
            left[i] += source.gain * sourceLeft[i];
            right[i] += source.gain * sourceRight[i];
        }
        longest = std::max(longest, length);
    }
    if (longest > 0)
        m_length = m_taken + longest;
    m_taken += count;
}

} // namespace av
