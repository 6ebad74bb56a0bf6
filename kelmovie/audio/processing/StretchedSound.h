#pragma once

#include "tempo/TempoChanger.h"

#include <QtGlobal>

#include <functional>
#include <vector>

namespace kel
{

/// Sound at another speed and with the same pitch, read from any frame of the original on. Samples are interleaved.
class StretchedSound
{
public:
    /// Stores `count` frames of the original from `first` on, which may be outside of it: silence.
    using Source = std::function<void(qint64 first, int count, float *samples)>;

    /// See TempoChanger.
    static bool supports(int sampleRate, int channelCount, double speed)
    {
        return TempoChanger::supports(sampleRate, channelCount, speed);
    }

    /// The first frame that is read is `firstFrame` of the original.
    StretchedSound(int sampleRate, int channelCount, Source source, double firstFrame, double speed);

    /// For what is read from now on; meant for small corrections.
    void setSpeed(double speed) { m_changer.setTempo(speed); }
    void read(float *samples, int frames);

private:
    const int m_channelCount;
    const Source m_source;
    TempoChanger m_changer;
    qint64 m_next; // frame of the original
    std::vector<float> m_block;
};

} // namespace kel
