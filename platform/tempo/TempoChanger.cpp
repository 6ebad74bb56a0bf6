#include "tempo/TempoChanger.h"

#include <SoundTouch.h>

#include <cmath>
#include <type_traits>

namespace kel
{

namespace
{

// Outside of these, the library's pieces would be too short, its searches too long or its buffers too large.
constexpr int kMinSampleRate = 4'000;
constexpr int kMaxSampleRate = 400'000;
constexpr int kMaxChannels = 16;
constexpr double kMinTempo = 0.05;
constexpr double kMaxTempo = 32;

// Longer pieces and searches sound smoother but move a sound further from its place. With these it is off by no more
// than 10 ms, at less than half the speed by 15 ms of the slow sound's original.
constexpr double kModerateMin = 0.75;
constexpr double kModerateMax = 2.0;
constexpr int kModeratePieceMs = 36;
constexpr int kModerateSearchMs = 12;
constexpr int kExtremePieceMs = 28;
constexpr int kExtremeSearchMs = 10;
constexpr int kOverlapMs = 8;

static_assert(std::is_same_v<soundtouch::SAMPLETYPE, float>);

} // namespace

class TempoChanger::Private
{
public:
    soundtouch::SoundTouch engine;
    double tempo = 1.0;
    double pieceFrames = 0; // without the overlap
};

bool TempoChanger::supports(int sampleRate, int channelCount, double tempo)
{
    return sampleRate >= kMinSampleRate && sampleRate <= kMaxSampleRate && channelCount >= 1 &&
           channelCount <= kMaxChannels && tempo >= kMinTempo && tempo <= kMaxTempo;
}

TempoChanger::TempoChanger(int sampleRate, int channelCount, double tempo)
    : d(std::make_unique<Private>())
{
    const bool isModerate = tempo >= kModerateMin && tempo <= kModerateMax;
    const int pieceMs = isModerate ? kModeratePieceMs : kExtremePieceMs;
    d->pieceFrames = double(pieceMs - kOverlapMs) * sampleRate / 1000;
    d->engine.setSampleRate(unsigned(sampleRate));
    d->engine.setChannels(unsigned(channelCount));
    d->engine.setSetting(SETTING_USE_AA_FILTER, 0); // only needed to change the pitch
    d->engine.setSetting(SETTING_SEQUENCE_MS, pieceMs);
    d->engine.setSetting(SETTING_SEEKWINDOW_MS, isModerate ? kModerateSearchMs : kExtremeSearchMs);
    d->engine.setSetting(SETTING_OVERLAP_MS, kOverlapMs);
    setTempo(tempo);
}

TempoChanger::~TempoChanger() = default;

void TempoChanger::setTempo(double tempo)
{
    d->tempo = tempo;
    d->engine.setTempo(tempo);
}

int TempoChanger::inputOffset() const
{
    return int(std::lround(d->pieceFrames / 2 * (d->tempo - 1)));
}

void TempoChanger::put(const float *samples, int frames)
{
    d->engine.putSamples(samples, unsigned(frames));
}

int TempoChanger::take(float *samples, int maxFrames)
{
    return int(d->engine.receiveSamples(samples, unsigned(maxFrames)));
}

} // namespace kel
