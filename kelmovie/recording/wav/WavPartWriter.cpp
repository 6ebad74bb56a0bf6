#include "recording/wav/WavPartWriter.h"

namespace kel
{

namespace
{
/// How far continuous sound may deviate from the clock before single frames correct it, and before silence or a cut
/// does: packet times jitter.
constexpr qint64 kDriftMs = 4;
constexpr qint64 kToleranceMs = 25;
constexpr int kZerosSize = 1 << 16;
} // namespace

WavPartWriter::WavPartWriter(const WavHeader &format)
    : m_format(format)
{
}

WavPartWriter::~WavPartWriter()
{
    close();
}

bool WavPartWriter::open(const QString &path, qint64 startMs)
{
    close();
    m_startMs = startMs;
    m_size = 0;
    m_soundEnd = 0;
    m_heardEnd = 0;
    m_end = kNoEnd;
    m_file.setFileName(path);
    // Unbuffered: written sound survives if this process is killed.
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered)) {
        fail();
        return false;
    }
    const QByteArray header = m_format.toBytes();
    if (m_file.write(header) != header.size()) {
        fail();
        m_file.close();
        return false;
    }
    return true;
}

void WavPartWriter::writeSilenceTo(qint64 ms)
{
    appendZeros(bytesAt(ms) - m_size);
}

void WavPartWriter::writePacket(const char *data, qint64 size, qint64 recordedAtMs)
{
    if (!isOpen())
        return;
    qint64 position = bytesAt(recordedAtMs);
    m_heardEnd = position + size;
    if (m_end != kNoEnd)
        size = qMin(size, m_end - position);
    const qint64 early = qMax(qint64(0), -position);
    position += early;
    size -= early;
    if (size <= 0)
        return;

    if (data)
        data += early;
    // Silence that was only filled in gives way.
    if (m_size > m_soundEnd)
        resizeTo(qMax(position, m_soundEnd));
    writeContinuing(data, size, position);
    m_soundEnd = m_size;
}

void WavPartWriter::writeContinuing(const char *data, qint64 size, qint64 position)
{
    const qint64 frame = m_format.blockAlign;
    const qint64 gap = position - m_size;
    if (gap > bytesOf(kToleranceMs)) {
        appendZeros(gap);
    } else if (gap < -bytesOf(kToleranceMs)) {
        const qint64 overlap = qMin(-gap, size);
        data += data ? overlap : 0;
        size -= overlap;
    } else if (gap > bytesOf(kDriftMs)) {
        write(data, frame);
    } else if (gap < -bytesOf(kDriftMs)) {
        data += data ? frame : 0;
        size -= frame;
    }
    write(data, size);
}

void WavPartWriter::setEnd(qint64 endMs)
{
    m_end = qMax(qint64(0), bytesAt(endMs));
}

void WavPartWriter::updateSizes()
{
    if (!isOpen())
        return;
    if (!WavHeader::writeSizes(m_file, m_size) || !m_file.seek(WavHeader::kSize + m_size))
        fail();
}

void WavPartWriter::close()
{
    if (!isOpen())
        return;
    if (m_end != kNoEnd)
        resizeTo(m_end);
    updateSizes();
    m_file.close();
}

qint64 WavPartWriter::bytesAt(qint64 ms) const
{
    return bytesOf(ms - m_startMs);
}

qint64 WavPartWriter::bytesOf(qint64 ms) const
{
    return ms * m_format.sampleRate / 1000 * m_format.blockAlign;
}

void WavPartWriter::resizeTo(qint64 size)
{
    if (size > m_size) {
        appendZeros(size - m_size);
    } else if (size < m_size) {
        if (!m_file.resize(WavHeader::kSize + size) || !m_file.seek(WavHeader::kSize + size))
            fail();
        else
            m_size = size;
    }
}

/// Null `data` means zeros.
void WavPartWriter::write(const char *data, qint64 size)
{
    if (data)
        append(data, size);
    else
        appendZeros(size);
}

void WavPartWriter::appendZeros(qint64 size)
{
    static const QByteArray zeros(kZerosSize, '\0');
    while (size > 0 && append(zeros.constData(), qMin(size, qint64(kZerosSize))))
        size -= kZerosSize;
}

/// Keeps whole frames only: an incomplete frame would swap the channels of all that follows.
bool WavPartWriter::append(const char *data, qint64 size)
{
    qint64 written = 0;
    while (m_file.isOpen() && written < size) {
        const qint64 more = m_file.write(data + written, size - written);
        if (more <= 0)
            break;
        written += more; // a disk that fills up reports its error only with the next write
    }
    if (written == size) {
        m_size += size;
        return true;
    }
    if (!isOpen())
        return false;
    fail();
    m_size += written;
    m_size -= m_size % m_format.blockAlign;
    m_file.resize(WavHeader::kSize + m_size);
    m_file.seek(WavHeader::kSize + m_size);
    return false;
}

void WavPartWriter::fail()
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("cannot write %1: %2").arg(m_file.fileName(), m_file.errorString());
}

} // namespace kel
