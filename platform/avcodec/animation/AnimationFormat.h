#pragma once

#include "avcodec/OutputFile.h"
#include "avcodec/animation/FrameDelta.h"

#include <QByteArray>
#include <QSize>

#include <atomic>
#include <optional>

namespace av
{

/// A picture in its encoded form, waiting to be written.
struct EncodedFrame {
    QRect rect;                                     ///< place in the animation
    bool hasTransparentPixels = false;              ///< transparent pixels stand for what was there before
    QByteArray data;                                ///< as the format that made it understands it; empty: it failed
    std::optional<QRgb> unusedColor = std::nullopt; ///< as in its FrameDelta
};

/// What sets one animated picture format apart from another. AnimationEncoder does the rest: it finds what changes,
/// counts the time, and runs encode() on several threads at once and everything else on one at a time.
class AnimationFormat
{
public:
    /// What the format, and the programs that show it, can deal with.
    struct Limits {
        int largestSide;    ///< pixels
        int alignment;      ///< rectangles begin at multiples of it
        int ticksPerSecond; ///< unit of durations
        int shortest;       ///< ticks of a frame, at least
        int longest;        ///< ticks of a frame, at most
    };

    virtual ~AnimationFormat() = default;

    virtual Limits limits() const = 0;

    /// Sees the first picture before anything is encoded or written, to settle what is to hold for the whole file.
    virtual void analyzeFirstFrame(const FrameDelta &first) = 0;

    /// May give up with empty data as soon as `cancelled` is set.
    virtual EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const = 0;

    /// `plays`: how often the animation is to be shown, 0 for endlessly.
    virtual bool writeHeader(OutputFile &file, QSize size, int plays) = 0;

    /// Comes before writeFrame() for every picture but the first. Whatever it does to the file and however it ends, all
    /// frames of before are in there. May give up as soon as `cancelled` is set.
    virtual bool prepareToWrite(OutputFile &, const EncodedFrame &, const std::atomic<bool> &) { return true; }

    virtual bool writeFrame(OutputFile &file, const EncodedFrame &picture, int ticks) = 0;
    virtual bool writeTrailer(OutputFile &file) = 0;
};

} // namespace av
