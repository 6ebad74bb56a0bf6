#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>

namespace av
{

/// An output for libavformat that keeps the part of a file from `begin` on in memory. It can be positioned anywhere, as
/// in the file; what is written before `begin` is thought to be in the file already and is dropped.
class MuxerBuffer
{
public:
    explicit MuxerBuffer(qint64 begin = 0);
    MuxerBuffer(const MuxerBuffer &) = delete;
    MuxerBuffer &operator=(const MuxerBuffer &) = delete;

    AVIOContext *io() { return m_io.get(); }

    /// Moves the writing position.
    void seek(qint64 position);

    /// What has been written to the window, complete up to now.
    const QByteArray &content();

    /// Goes on with an empty window at `begin`, which is also the writing position then.
    void restart(qint64 begin);

private:
    static int write(void *self, uint8_t *data, int size);
    static int64_t seekTo(void *self, int64_t offset, int whence);

    qint64 m_begin;
    qint64 m_position;
    QByteArray m_content;
    av::IoContext m_io;
};

} // namespace av
