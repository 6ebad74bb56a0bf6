#pragma once

#include "avcodec/ffmpeg/AvHandles.h"

#include <QByteArray>

namespace av
{

/// An output file of libavformat's own, which a muxer can open again to move the index to the front.
class MuxerFile
{
public:
    MuxerFile() = default;
    ~MuxerFile() { close(); }
    MuxerFile(const MuxerFile &) = delete;
    MuxerFile &operator=(const MuxerFile &) = delete;

    /// An AVERROR code, or 0. `interrupt` ends every write while it answers other than 0.
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
