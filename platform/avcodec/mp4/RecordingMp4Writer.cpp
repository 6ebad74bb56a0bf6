#include "avcodec/mp4/RecordingMp4Writer.h"

#include "avcodec/x264/X264Encoder.h"

#include <QtEndian>

namespace av
{

namespace
{

constexpr int kBoxHeader = 8;
constexpr int kPlaceholder = 16; // a box header with a 64-bit size

QByteArray placeholder()
{
    QByteArray box(kPlaceholder, '\0');
    qToBigEndian<quint32>(kPlaceholder, box.data());
    box.replace(4, 4, "free");
    return box;
}

QByteArray mediaDataHeader(qint64 size)
{
    QByteArray box(kPlaceholder, '\0');
    qToBigEndian<quint32>(1, box.data()); // the size follows the type
    box.replace(4, 4, "mdat");
    qToBigEndian<quint64>(quint64(size), box.data() + kBoxHeader);
    return box;
}

} // namespace

RecordingMp4Writer::RecordingMp4Writer(const QString &path, const Mp4VideoTrack &track)
    : m_muxer(track, m_fragment.io())
    , m_index(track)
{
    if (!m_file.open(path, OutputFile::Access::Private)) {
        fail(m_file.errorString());
        return;
    }
    const int code = m_muxer.writeHeader("empty_moov+default_base_moof+frag_custom");
    if (code < 0) {
        failToWrite(errorText(code));
        return;
    }
    QByteArray header = m_fragment.content();
    m_placeholder = qFromBigEndian<qint32>(header.constData()); // after the first box, "ftyp"
    header.insert(int(m_placeholder), placeholder());
    append(header);
}

bool RecordingMp4Writer::writeFrame(const EncodedVideoFrame &frame)
{
    if (!m_errorString.isEmpty())
        return false;
    m_fragment.restart(m_file.size());
    int code = m_muxer.writeFrame(frame);
    if (code == 0)
        code = m_muxer.flushFragment();
    if (code < 0)
        return failToWrite(errorText(code));
    if (!append(m_fragment.content()))
        return false;
    ++m_frames;
    m_index.add(frame, m_file.size() - frame.size); // a fragment ends with the data of its frame
    return true;
}

bool RecordingMp4Writer::close()
{
    if (m_file.isOpen() && m_errorString.isEmpty()) {
        if (m_frames == 0)
            m_file.remove();
        else
            finalizeAsPlainMp4(m_index.finish());
    }
    m_file.close();
    return m_errorString.isEmpty();
}

bool RecordingMp4Writer::finalizeAsPlainMp4(const QByteArray &index)
{
    if (index.isEmpty())
        return failToWrite(QStringLiteral("cannot build the index"));
    const qint64 mediaEnd = m_file.size();
    if (!append(index))
        return false;
    // The file is valid before and after this write: until then, readers see the fragments.
    return m_file.overwrite(m_placeholder, mediaDataHeader(mediaEnd - m_placeholder)) || fail(m_file.errorString());
}

bool RecordingMp4Writer::append(const QByteArray &data)
{
    if (m_file.write(data))
        return true;
    fail(m_file.errorString());
    m_file.truncate(m_file.size()); // removes what a partial write left
    return false;
}

bool RecordingMp4Writer::fail(const QString &text)
{
    if (m_errorString.isEmpty())
        m_errorString = text;
    return false;
}

bool RecordingMp4Writer::failToWrite(const QString &reason)
{
    return fail(QStringLiteral("Cannot write %1: %2").arg(m_file.path(), reason));
}

} // namespace av
