#include "avcodec/ffmpeg/MuxerBuffer.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace av
{

namespace
{

constexpr int kBufferSize = 32 * 1024;

} // namespace

MuxerBuffer::MuxerBuffer(qint64 begin)
    : m_begin(begin)
    , m_position(begin)
{
    auto *buffer = static_cast<unsigned char *>(av_malloc(kBufferSize));
    if (!buffer)
        return;
    m_io.reset(avio_alloc_context(buffer, kBufferSize, 1, this, nullptr, &MuxerBuffer::write, &MuxerBuffer::seekTo));
    if (!m_io)
        av_free(buffer);
    else
        seek(begin);
}

void MuxerBuffer::seek(qint64 position)
{
    avio_seek(m_io.get(), position, SEEK_SET);
}

const QByteArray &MuxerBuffer::content()
{
    avio_flush(m_io.get());
    return m_content;
}

void MuxerBuffer::restart(qint64 begin)
{
    avio_flush(m_io.get());
    m_content.clear();
    m_begin = begin;
    seek(begin);
}

int MuxerBuffer::write(void *self, uint8_t *data, int size)
{
    auto &buffer = *static_cast<MuxerBuffer *>(self);
    const qint64 end = buffer.m_position + size;
    const qint64 first = std::max(buffer.m_position, buffer.m_begin);
    if (end > first) {
        const qint64 contentEnd = end - buffer.m_begin;
        if (buffer.m_content.size() < contentEnd)
            buffer.m_content.resize(int(contentEnd));
        std::memcpy(buffer.m_content.data() + (first - buffer.m_begin), data + (first - buffer.m_position),
                    std::size_t(end - first));
    }
    buffer.m_position = end;
    return size;
}

int64_t MuxerBuffer::seekTo(void *self, int64_t offset, int whence)
{
    auto &buffer = *static_cast<MuxerBuffer *>(self);
    switch (whence & ~AVSEEK_FORCE) {
    case SEEK_SET:
        return buffer.m_position = offset;
    case SEEK_CUR:
        return buffer.m_position += offset;
    default:
        return AVERROR(ENOSYS);
    }
}

} // namespace av
