#include "avcodec/SoundMix.h"

#include <algorithm>
#include <utility>

void SoundMix::add(std::unique_ptr<AudioReader> reader)
{
    m_readers.push_back(std::move(reader));
}

qint64 SoundMix::expectedLength() const
{
    qint64 length = 0;
    for (const auto &reader : m_readers)
        length = std::max(length, reader->expectedLength());
    return length;
}

int SoundMix::read(float *left, float *right, int count)
{
    if (m_taken == 0) {
        // What the limiter holds back is read ahead, so that the sound begins with its first sample.
        std::vector<float> first(PeakLimiter::Delay);
        std::vector<float> second(PeakLimiter::Delay);
        readSum(first.data(), second.data(), PeakLimiter::Delay);
        m_limiter.process(first.data(), second.data(), PeakLimiter::Delay);
    }
    readSum(left, right, count);
    m_limiter.process(left, right, count);
    const int sound = int(std::clamp<qint64>(m_length - m_given, 0, count));
    m_given += count;
    return sound;
}

void SoundMix::readSum(float *left, float *right, int count)
{
    float sourceLeft[MaxRead];
    float sourceRight[MaxRead];
    std::fill_n(left, count, 0.0F);
    std::fill_n(right, count, 0.0F);
    int longest = 0;
    for (const auto &reader : m_readers) {
        const int length = reader->read(sourceLeft, sourceRight, count);
        for (int i = 0; i < length; ++i) {
            left[i] += sourceLeft[i];
            right[i] += sourceRight[i];
        }
        longest = std::max(longest, length);
    }
    if (longest > 0)
        m_length = m_taken + longest;
    m_taken += count;
}
