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
    : m_file(path)
    , m_fragments(track, m_window.io())
    , m_index(track)
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        fail(m_file.errorString());
        return;
    }
    const int code = m_fragments.writeHeader("empty_moov+default_base_moof+frag_custom");
    if (code < 0) {
        fail(av::errorText(code));
        return;
    }
    QByteArray header = m_window.content();
    m_placeholder = qFromBigEndian<qint32>(header.constData()); // behind the first box, "ftyp"
    header.insert(int(m_placeholder), placeholder());
    append(header);
}

bool RecordingMp4Writer::writeFrame(const EncodedVideoFrame &picture)
{
    if (!m_errorString.isEmpty())
        return false;
    m_window.restart(m_end);
    int code = m_fragments.writeFrame(picture);
    if (code == 0)
        code = m_fragments.flushFragment();
    if (code < 0)
        return fail(av::errorText(code));
    if (!append(m_window.content()))
        return false;
    ++m_pictures;
    // The picture is the last thing in its fragment.
    m_index.add(picture, m_end - picture.size);
    return true;
}

bool RecordingMp4Writer::close()
{
    if (m_file.isOpen() && m_errorString.isEmpty()) {
        if (m_pictures == 0)
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
        return fail(QStringLiteral("the index could not be made"));
    const qint64 mediaEnd = m_end;
    if (!append(index))
        return false;
    // From here on the file is whole either way: until these 16 bytes are written, readers see the fragments.
    const QByteArray header = mediaDataHeader(mediaEnd - m_placeholder);
    return (m_file.seek(m_placeholder) && m_file.write(header) == header.size()) || fail(m_file.errorString());
}

bool RecordingMp4Writer::append(const QByteArray &data)
{
    // A write that ends early does not tell why; trying to write the rest does.
    for (qint64 written = 0; written < data.size();) {
        const qint64 count = m_file.write(data.constData() + written, data.size() - written);
        if (count <= 0) {
            fail(m_file.errorString());
            m_file.resize(m_end);
            return false;
        }
        written += count;
    }
    m_end += data.size();
    return true;
}

bool RecordingMp4Writer::fail(const QString &reason)
{
    if (m_errorString.isEmpty())
        m_errorString = QStringLiteral("Cannot write %1: %2").arg(m_file.fileName(), reason);
    return false;
}

} // namespace av
