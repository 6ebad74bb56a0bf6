#pragma once

#include <memory>

namespace kel
{

/// Makes sound faster or slower and keeps its pitch: it repeats or leaves out pieces of some hundredths of a second,
/// joined where they fit best. Input is put in, output taken out, both as interleaved samples. One thread at a time.
class TempoChanger
{
public:
    /// Whether sound of this kind can be brought to `tempo`; never if the library is missing from this build. Nothing
    /// else may be used then.
    static bool supports(int sampleRate, int channelCount, double tempo);

    /// A `tempo` of 2 halves the duration.
    TempoChanger(int sampleRate, int channelCount, double tempo);
    ~TempoChanger();

    /// For what is put in from now on.
    void setTempo(double tempo);
    /// How many frames the input has to begin behind the frame that the first output stands for, negative: before it. A
    /// piece keeps its own tempo, so that only its middle can be where it belongs.
    int inputOffset() const;

    void put(const float *samples, int frames);
    /// Returns how many frames there were, up to `maxFrames`.
    int take(float *samples, int maxFrames);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace kel
