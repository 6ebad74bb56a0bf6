#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>

namespace av
{

/// In-memory output for libavformat that stands for a file but keeps only what is written from position `begin` on.
/// Positions are those of the file; what is written before `begin` is discarded.
class MuxerBuffer
{
public:
    explicit MuxerBuffer(qint64 begin = 0);
    MuxerBuffer(const MuxerBuffer &) = delete;
    MuxerBuffer &operator=(const MuxerBuffer &) = delete;

    AVIOContext *io() { return m_io.get(); }

    /// Moves the write position.
    void seek(qint64 position);

    /// Everything written so far from `begin` on.
    const QByteArray &content();

    /// Discards the content and continues at `begin`, which also becomes the write position.
    void restart(qint64 begin);

private:
    static int write(void *self, uint8_t *data, int size);
    static int64_t seekTo(void *self, int64_t offset, int whence);

    qint64 m_begin;
    qint64 m_position;
    QByteArray m_content;
    IoContext m_io;
};

} // namespace av
