#pragma once

#include "avcodec/OutputFile.h"
#include "avcodec/animation/FrameDelta.h"

#include <QByteArray>
#include <QSize>

#include <atomic>
#include <optional>

namespace av
{

/// An encoded animation frame that is ready to be written.
struct EncodedFrame {
    QRect rect;                                     ///< position in the animation
    bool hasTransparentPixels = false;              ///< transparent pixels keep the previous frame visible
    QByteArray data;                                ///< in the format that encoded it; empty: encoding failed
    std::optional<QRgb> unusedColor = std::nullopt; ///< as in FrameDelta
};

/// The part of an animation encoder that is specific to one file format. AnimationEncoder does the rest: it finds the
/// changes between frames and computes durations. It calls encode() on several threads at once, everything else on one
/// thread at a time.
class AnimationFormat
{
public:
    /// Limits of the format and of common viewers.
    struct Limits {
        int maxSide;        ///< pixels
        int alignment;      ///< frame rectangles begin at multiples of it
        int ticksPerSecond; ///< unit of durations
        int minTicks;       ///< shortest frame duration
        int maxTicks;       ///< longest frame duration
    };

    virtual ~AnimationFormat() = default;

    virtual Limits limits() const = 0;

    /// Called with the first frame before anything is encoded or written, to choose what applies to the whole file.
    virtual void analyzeFirstFrame(const FrameDelta &first) = 0;

    /// May return empty data early once `cancelled` is set.
    virtual EncodedFrame encode(const FrameDelta &delta, const std::atomic<bool> &cancelled) const = 0;

    /// `plays`: how many times the animation is played, 0 for endlessly.
    virtual bool writeHeader(OutputFile &file, QSize size, int plays) = 0;

    /// Called before writeFrame() for every frame but the first. May rewrite the file; whether it succeeds or not, all
    /// previous frames are in the file afterwards. May return early once `cancelled` is set.
    virtual bool prepareToWrite(OutputFile &, const EncodedFrame &, const std::atomic<bool> &) { return true; }

    virtual bool writeFrame(OutputFile &file, const EncodedFrame &frame, int ticks) = 0;
    virtual bool writeTrailer(OutputFile &file) = 0;
};

} // namespace av
