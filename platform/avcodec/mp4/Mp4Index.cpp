#include "avcodec/mp4/Mp4Index.h"

#include <limits>

namespace av
{

namespace
{

// Behind the end of any file, so that the buffer keeps only the box. The box does not contain its own position.
constexpr qint64 kBoxPosition = std::numeric_limits<qint64>::max() / 2;

} // namespace

Mp4Index::Mp4Index(const Mp4VideoTrack &track)
    : m_file(kBoxPosition)
    , m_muxer(track, m_file.io())
    , m_isValid(true)
{
    m_file.seek(0);
    m_isValid = m_muxer.writeHeader(nullptr) == 0;
}

void Mp4Index::add(const EncodedVideoFrame &frame, qint64 offset)
{
    if (!m_isValid)
        return;
    m_file.seek(offset);
    m_isValid = m_muxer.writeFrame(frame) == 0;
}

QByteArray Mp4Index::finish()
{
    if (!m_isValid)
        return {};
    m_isValid = false;
    m_file.seek(kBoxPosition);
    return m_muxer.writeTrailer() == 0 ? m_file.content() : QByteArray();
}

} // namespace av
