#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>

namespace av
{

/// Owner of an output file of libavformat. A muxer can open it again to move the index to the front.
class MuxerFile
{
public:
    MuxerFile() = default;
    ~MuxerFile() { close(); }
    MuxerFile(const MuxerFile &) = delete;
    MuxerFile &operator=(const MuxerFile &) = delete;

    /// An AVERROR code, or 0. Writes are cancelled as soon as `interrupt` returns nonzero.
    int open(const QByteArray &url, const AVIOInterruptCB *interrupt = nullptr)
    {
        return avio_open2(&m_io, url.constData(), AVIO_FLAG_WRITE, interrupt, nullptr);
    }
    int close() { return avio_closep(&m_io); }
    AVIOContext *io() const { return m_io; }

private:
    AVIOContext *m_io = nullptr;
};

} // namespace av
