#include "audio/processing/StretchedSound.h"

#include <utility>

namespace kel
{

namespace
{
constexpr int kBlockFrames = 512;
} // namespace

StretchedSound::StretchedSound(int sampleRate, int channelCount, Source source, double firstFrame, double speed)
    : m_channelCount(channelCount)
    , m_source(std::move(source))
    , m_changer(sampleRate, channelCount, speed)
    , m_next(qRound64(firstFrame) + m_changer.inputOffset())
    , m_block(std::size_t(kBlockFrames) * std::size_t(channelCount))
{
}

void StretchedSound::read(float *samples, int frames)
{
    while (frames > 0) {
        const int taken = m_changer.take(samples, frames);
        samples += std::ptrdiff_t(taken) * m_channelCount;
        frames -= taken;
        if (taken > 0)
            continue;
        m_source(m_next, kBlockFrames, m_block.data());
        m_changer.put(m_block.data(), kBlockFrames);
        m_next += kBlockFrames;
    }
}

} // namespace kel
