#include "recording/wav/WavPartWriter.h"

namespace kel
{

namespace
{
/// How far continuous sound may deviate from the clock before it is corrected: packet times jitter.
constexpr qint64 kToleranceMs = 50;
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

void WavPartWriter::writeSilence()
{
    appendZeros(qint64(m_format.sampleRate / 10) * m_format.blockAlign);
}

void WavPartWriter::writePacket(const char *data, qint64 size, qint64 recordedAtMs)
{
    if (!isOpen())
        return;
    qint64 position = bytesAt(recordedAtMs);
    if (m_end != kNoEnd)
        size = qMin(size, m_end - position);
    const qint64 early = qMax(qint64(0), -position);
    position += early;
    size -= early;
    if (size <= 0)
        return;

    const qint64 tolerance = m_size > m_soundEnd ? 0 : bytesAt(m_startMs + kToleranceMs);
    if (position < m_size)
        resizeTo(qMax(position, m_soundEnd));
    else if (position > m_size + tolerance)
        appendZeros(position - m_size);
    if (!data)
        appendZeros(size);
    else
        append(data + early, size);
    m_soundEnd = m_size;
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
        resizeTo(qMax(m_end, m_soundEnd));
    updateSizes();
    m_file.close();
}

qint64 WavPartWriter::bytesAt(qint64 ms) const
{
    return (ms - m_startMs) * m_format.sampleRate / 1000 * m_format.blockAlign;
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

void WavPartWriter::appendZeros(qint64 size)
{
    static const QByteArray zeros(kZerosSize, '\0');
    while (size > 0 && append(zeros.constData(), qMin(size, qint64(kZerosSize))))
        size -= kZerosSize;
}

/// Keeps whole frames only: an incomplete frame would swap the channels of all that follows.
bool WavPartWriter::append(const char *data, qint64 size)
{
    const qint64 written = m_file.isOpen() ? m_file.write(data, size) : 0;
    if (written == size) {
        m_size += size;
        return true;
    }
    if (!isOpen())
        return false;
    fail();
    m_size += qMax(qint64(0), written);
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
