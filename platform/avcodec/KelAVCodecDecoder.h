#pragma once

#include <QImage>
#include <QSize>

/// A video file whose frames are addressed by number. One thread at a time.
class KelAVCodecDecoder
{
public:
    virtual ~KelAVCodecDecoder() = default;

    /// Releases the file; the decoder is not valid afterwards.
    virtual void close() = 0;

    /// The file is open and its video can be decoded.
    virtual bool isValid() const = 0;

    /// Frame `index` (0-based, in presentation order) exactly, in any order of calls; a null image on failure.
    virtual QImage decodeFrame(int index) = 0;

    /// Pixels of a frame.
    virtual QSize getFrameSize() const = 0;

    /// Frames a second as the file states them.
    virtual double getFPS() const = 0;

    /// Number of frames that can be decoded; 0 when the file is not valid.
    virtual int getFrameCount() const = 0;
};
