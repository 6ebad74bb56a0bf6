#pragma once

#include <QImage>
#include <QString>

/// Captures one rectangle of the screen, again and again. Created on the GUI thread, then used by one thread at a time.
class KelScreenStreamer
{
public:
    virtual ~KelScreenStreamer() = default;

    /// True for the first question; then only when something inside the rectangle may have changed since the last
    /// captureTo(). False for good once the screen is lost (see errorString()).
    virtual bool hasFrameChanged() = 0;

    /// Copies the rectangle's present content, in physical pixels, into `image`. Its size and format
    /// (QImage::Format_ARGB32_Premultiplied, opaque) are set as needed; a fitting buffer is reused. What lies outside
    /// of the screen is black. False (and `image` unchanged) when the screen cannot be read.
    virtual bool captureTo(QImage &image) = 0;

    /// Empty while the streamer works; else what went wrong, in English. Any thread may ask.
    virtual QString errorString() const = 0;
};
