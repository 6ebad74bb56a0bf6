#pragma once

#include <QImage>
#include <QString>

#include <chrono>

/// Encodes one file frame by frame on threads of its own. Unless stated otherwise, functions are called from one
/// thread.
///
/// Frames are numbered from 0 and all have the same duration. An image is shown until the next one is added, so an
/// image that stays for several frames needs to be added only once: add it with the number of its first frame, add the
/// next image with the number of that one's first frame, and call repeatLastFrameUntil() for the last image. The file
/// then has the same length and shows the same as if every frame had been added; repeated frames take hardly any bytes
/// or time.
class KelAVCodecEncoder
{
public:
    virtual ~KelAVCodecEncoder() = default;

    /// The file is open and no error has occurred. Once false it stays false, and errorString() has the reason.
    virtual bool isValid() const = 0;

    /// Waits up to `timeout` for room in the queue. True if addFrame() and repeatLastFrameUntil() will not block.
    virtual bool waitForRoom(std::chrono::milliseconds timeout)
    {
        Q_UNUSED(timeout)
        return true;
    }

    /// Adds the image that is shown from frame `index` on. Indices must increase from call to call; frames left out
    /// repeat the previous image. The image is copied or converted before the call returns, so its memory may be
    /// reused at once. Blocks while the queue is full. False if encoding has failed; an index that does not increase
    /// or an image of another size makes it fail.
    virtual bool addFrame(quint64 index, const QImage &image) = 0;

    /// Shows the last image until frame `end`, exclusive: the first frame of the next image or the end of the file.
    /// Does nothing if it is already shown that long. False if encoding has failed or no image has been added.
    virtual bool repeatLastFrameUntil(quint64 end) = 0;

    /// Encodes what is queued and finishes the file. False if the file is incomplete. Further calls return the same.
    virtual bool close() = 0;

    /// Drops what is queued and stops encoding as soon as possible; what has been written stays on disk. Any thread: a
    /// close() that is waiting on another thread then returns false soon. No effect once the file is complete.
    virtual void abort() = 0;

    /// Number of frames encoded and written so far, including repeated ones. Any thread.
    virtual quint64 framesWritten() const = 0;

    /// The first error, in English; empty if there was none. Any thread.
    virtual QString errorString() const = 0;
};
