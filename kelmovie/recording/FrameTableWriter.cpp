#include "recording/FrameTableWriter.h"

#include "files/WriteAll.h"
#include "recording/FrameTableFormat.h"

#include <QDataStream>

namespace kel
{

using namespace FrameTableFormat;

FrameTableWriter::FrameTableWriter(const QString &path)
    : m_file(path)
{
}

bool FrameTableWriter::open()
{
    // Unbuffered: entries must reach the file before the count that includes them.
    return m_file.isOpen() || m_file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered);
}

bool FrameTableWriter::update(const std::vector<qint64> &entries)
{
    if (!open())
        return false;
    if (m_count < 0) {
        if (!writeAt(0, {kVersion, 0}))
            return false;
        m_count = 0;
    }
    const auto count = qint64(entries.size());
    if (count == m_count)
        return true;
    if (!writeAt(kEntriesOffset + kEntrySize * m_count, {entries.begin() + m_count, entries.end()}) ||
        !writeAt(kCountOffset, {count}))
        return false;
    m_count = count;
    return true;
}

void FrameTableWriter::close()
{
    m_file.close();
    m_count = -1;
}

bool FrameTableWriter::writeAt(qint64 offset, const std::vector<qint64> &numbers)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_5_13);
    for (const qint64 number : numbers)
        stream << qint32(number);
    return m_file.seek(offset) && writeAll(m_file, bytes);
}

} // namespace kel
