#pragma once

#include <QImage>
#include <QString>

/// An encoder that writes one file, frame by frame, on threads of its own. Used by one thread.
class KelAVCodecEncoder
{
public:
    virtual ~KelAVCodecEncoder() = default;

    /// The file is open and nothing has failed so far. Once false it stays false, and errorString() says why.
    virtual bool isValid() const = 0;

    /// Takes frame number `index` (0, 1, 2, …). The image is copied or converted before the call returns, so the
    /// caller may paint into it again. Waits while the queue is full. False when the encoder has failed.
    virtual bool addFrame(quint64 index, const QImage &image) = 0;

    /// Encodes what is queued and finishes the file. False when it is not complete. Later calls answer the same.
    virtual bool close() = 0;

    /// Drops what is queued and gives up the file as soon as possible; what was written stays on disk. Any thread: a
    /// close() that waits on another one then returns false soon, so that a long tail of an export can be cancelled.
    virtual void abort() = 0;

    /// Frames that have been encoded and written so far. Any thread.
    virtual quint64 framesWritten() const = 0;

    /// The first failure in English, empty when there was none. Any thread.
    virtual QString errorString() const = 0;
};
