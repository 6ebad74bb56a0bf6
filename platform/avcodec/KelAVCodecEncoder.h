#pragma once

#include <QImage>
#include <QString>

#include <chrono>

/// An encoder that writes one file, frame by frame, on threads of its own. Used by one thread.
///
/// Frames are numbered from 0 and all last equally long. A picture is shown until the next one's frame, so one that is
/// to be seen for several frames needs to be handed over once only: add it at its first frame, the next picture at
/// that one's, and tell with repeatLastFrameUntil() how long the last one stays. The file is as long, and looks the
/// same, as if each frame had been added; repetitions cost next to nothing in bytes and time.
class KelAVCodecEncoder
{
public:
    virtual ~KelAVCodecEncoder() = default;

    /// The file is open and nothing has failed so far. Once false it stays false, and errorString() says why.
    virtual bool isValid() const = 0;

    /// Whether addFrame() and repeatLastFrameUntil() can go ahead without waiting for the encoder, once at most `limit`
    /// has passed.
    virtual bool waitForRoom(std::chrono::milliseconds) { return true; }

    /// Takes the picture that is shown from frame `index` on, which rises from call to call; frames left out repeat the
    /// picture before. The image is copied or converted before the call returns, so the caller may paint into it again.
    /// Waits while the queue is full. False when the encoder has failed.
    virtual bool addFrame(quint64 index, const QImage &image) = 0;

    /// Shows the latest picture until frame `end`, where the next one or the end of the file comes; does nothing when
    /// it is shown for that long already. False when the encoder has failed, or there is no picture yet.
    virtual bool repeatLastFrameUntil(quint64 end) = 0;

    /// Encodes what is queued and finishes the file. False when it is not complete. Later calls answer the same.
    virtual bool close() = 0;

    /// Drops what is queued and gives up the file as soon as possible; what was written stays on disk. Any thread: a
    /// close() that waits on another one then returns false soon, so that a long tail of an export can be cancelled.
    virtual void abort() = 0;

    /// Frames that have been encoded and written so far, repeated ones included. Any thread.
    virtual quint64 framesWritten() const = 0;

    /// The first failure in English, empty when there was none. Any thread.
    virtual QString errorString() const = 0;
};
