#pragma once

#include <QImage>
#include <QString>

/// Captures one rectangle of the screen repeatedly. Created on the GUI thread, then used by one thread at a time.
class KelScreenStreamer
{
public:
    virtual ~KelScreenStreamer() = default;

    /// True on the first call; later, true when the content of the rectangle may have changed since the last
    /// captureTo(). Always false once the screen is lost (see errorString()).
    virtual bool hasFrameChanged() = 0;

    /// Copies the current content of the rectangle, in physical pixels, into `image`. Sets its size and format
    /// (QImage::Format_ARGB32_Premultiplied, opaque) if needed; a suitable buffer is reused. Pixels outside of the
    /// screen are black. False, with `image` unchanged, when the screen cannot be read.
    virtual bool captureTo(QImage &image) = 0;

    /// Empty while the streamer works, otherwise the error in English. Any thread.
    virtual QString errorString() const = 0;

    /// True while the system that draws the screen does not respond. That is no error: capturing continues when it
    /// responds again. Any thread.
    virtual bool isStalled() const { return false; }
};
