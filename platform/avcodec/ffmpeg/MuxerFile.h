#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>

#include <algorithm>

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

    /// Writes what is buffered. An AVERROR code if that or an earlier write has failed, or 0.
    int close()
    {
        if (!m_io)
            return 0;
        avio_flush(m_io);
        const int error = m_io->error; // lost by avio_close() in some versions
        const int code = avio_closep(&m_io);
        return code < 0 ? code : std::min(error, 0);
    }
    AVIOContext *io() const { return m_io; }

private:
    AVIOContext *m_io = nullptr;
};

} // namespace av
