#pragma once

#include <QImage>
#include <QSize>

/// Random access to the frames of a video file. Not thread-safe: may be used from any thread, but only one at a time.
class KelAVCodecDecoder
{
public:
    virtual ~KelAVCodecDecoder() = default;

    /// Closes the file. The decoder is invalid afterwards.
    virtual void close() = 0;

    /// The file is open and its video can be decoded.
    virtual bool isValid() const = 0;

    /// Decodes exactly frame `index`, counted from 0 in presentation order; calls may come in any order. The image has
    /// QImage::Format_RGB32 and remains valid after the decoder is closed. Null if the index is out of range, the
    /// frame is damaged or the decoder is invalid.
    virtual QImage decodeFrame(int index) = 0;

    /// Size of a frame in pixels; invalid when the decoder is.
    virtual QSize getFrameSize() const = 0;

    /// Frames per second as stated by the file; 0 if it states none or the decoder is invalid.
    virtual double getFPS() const = 0;

    /// Number of frames that can be decoded; 0 when the decoder is invalid.
    virtual int getFrameCount() const = 0;
};
