#include "recording/input/KeyLogWriter.h"

#include "files/WriteAll.h"
#include "recording/FileWriting.h"

#include <algorithm>
#include <limits>

namespace kel
{

namespace
{
constexpr std::size_t kMinRoom = 256;

/// Has no effect: switches keys on, at a frame beyond any recording.
StoredKeyRecord spareRecord()
{
    return {qint32_le(0), quint32_le(1), qint32_le(std::numeric_limits<qint32>::max())};
}
} // namespace

KeyLogWriter::KeyLogWriter(const QString &path, const QSize &area)
    : m_file(path)
    , m_area(area)
{
}

std::size_t KeyLogWriter::firstNeeded(std::size_t count) const
{
    return m_file.isOpen() && count <= m_room ? std::min(m_count, count) : 0;
}

bool KeyLogWriter::update(std::size_t first, const StoredKeyRecords &records)
{
    const std::size_t count = first + records.size();
    if (!m_file.isOpen() || count > m_room) {
        if (!replace(records, std::max(kMinRoom, 2 * count)))
            return false;
        if (!open()) {
            m_error = m_file.errorString();
            return false;
        }
    } else {
        const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(records.data()),
                                                   int(records.size() * sizeof(StoredKeyRecord)));
        if (!m_file.seek(qint64(sizeof(KeyLogHeader)) + qint64(first) * qint64(sizeof(StoredKeyRecord))) ||
            !writeAll(m_file, bytes)) {
            m_error = m_file.errorString();
            return false;
        }
    }
    m_count = count;
    return true;
}

bool KeyLogWriter::finish(const StoredKeyRecords &records)
{
    if (replace(records, records.size()))
        return true;
    // Spare records can be overwritten even when the disk is full.
    const std::size_t first = firstNeeded(records.size());
    return m_file.isOpen() && records.size() <= m_room &&
           update(first, StoredKeyRecords(records.begin() + std::ptrdiff_t(first), records.end()));
}

void KeyLogWriter::restart()
{
    m_file.close();
    m_count = 0;
    m_room = 0;
}

bool KeyLogWriter::open()
{
    // Unbuffered: no copy of typed keys may remain in memory.
    return m_file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered);
}

bool KeyLogWriter::replace(const StoredKeyRecords &records, std::size_t room)
{
    KeyLogHeader header;
    header.count = qint32(room);
    header.recordBytes = room * sizeof(StoredKeyRecord);
    header.width = m_area.width();
    header.height = m_area.height();

    std::vector<char, WipingAllocator<char>> bytes(sizeof(KeyLogHeader) + room * sizeof(StoredKeyRecord));
    const StoredKeyRecords padding(room - records.size(), spareRecord());
    char *end = std::copy_n(reinterpret_cast<const char *>(&header), sizeof header, bytes.data());
    end = std::copy_n(reinterpret_cast<const char *>(records.data()), records.size() * sizeof(StoredKeyRecord), end);
    std::copy_n(reinterpret_cast<const char *>(padding.data()), padding.size() * sizeof(StoredKeyRecord), end);
    const bool wasOpen = m_file.isOpen();
    if (!replaceFile(path(), QByteArray::fromRawData(bytes.data(), int(bytes.size())), &m_error, &m_file)) {
        if (wasOpen && !m_file.isOpen())
            open();
        return false;
    }
    restart();
    m_room = room;
    return true;
}

} // namespace kel
