#include "recording/input/KeyLogFile.h"

#include "recording/FileWriting.h"

#include <algorithm>
#include <limits>

namespace kel
{

namespace
{
struct Header {
    char magic[4] = {'K', 'E', 'L', 'K'};
    qint32_le count;
    quint32_le frameRate; // at which a reader converts logic frames to milliseconds
    quint32_le reserved;
    quint64_le recordBytes;
    qint32_le width;
    qint32_le height;
};
static_assert(sizeof(Header) == 32, "written as it is");

constexpr quint32 KeyFrameRate = 30;
constexpr std::size_t LeastRoom = 256;

/// "Switched on", at a frame that no recording has: without effect.
StoredKey emptyRecord()
{
    return {qint32_le(0), quint32_le(1), qint32_le(std::numeric_limits<qint32>::max())};
}
} // namespace

KeyLogFile::KeyLogFile(const QString &path, const QSize &area)
    : m_file(path)
    , m_area(area)
{
}

std::size_t KeyLogFile::firstNeeded(std::size_t count) const
{
    return m_file.isOpen() && count <= m_room ? m_count : 0;
}

bool KeyLogFile::update(std::size_t first, const StoredKeys &records)
{
    const std::size_t count = first + records.size();
    if (!m_file.isOpen() || count > m_room) {
        if (!replace(records, std::max(LeastRoom, 2 * count)))
            return false;
        if (!open()) {
            m_error = m_file.errorString();
            return false;
        }
    } else {
        const auto bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(records.data()),
                                                   int(records.size() * sizeof(StoredKey)));
        if (!m_file.seek(qint64(sizeof(Header) + first * sizeof(StoredKey))) || !writeAll(m_file, bytes)) {
            m_error = m_file.errorString();
            return false;
        }
    }
    m_count = count;
    return true;
}

bool KeyLogFile::finish(const StoredKeys &records)
{
    if (replace(records, records.size()))
        return true;
    // A full disk has room for what replaces the empty records.
    const std::size_t first = firstNeeded(records.size());
    return m_file.isOpen() && records.size() <= m_room &&
           update(first, StoredKeys(records.begin() + std::ptrdiff_t(first), records.end()));
}

void KeyLogFile::restart()
{
    m_file.close();
    m_count = 0;
    m_room = 0;
}

bool KeyLogFile::open()
{
    // Unbuffered: what is typed is in the file, and nowhere else, when it is written.
    return m_file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly | QIODevice::Unbuffered);
}

bool KeyLogFile::replace(const StoredKeys &records, std::size_t room)
{
    Header header;
    header.count = qint32(room);
    header.frameRate = KeyFrameRate;
    header.reserved = 0;
    header.recordBytes = room * sizeof(StoredKey);
    header.width = m_area.width();
    header.height = m_area.height();

    std::vector<char, WipingAllocator<char>> bytes(sizeof(Header) + room * sizeof(StoredKey));
    const StoredKeys padding(room - records.size(), emptyRecord());
    char *end = std::copy_n(reinterpret_cast<const char *>(&header), sizeof header, bytes.data());
    end = std::copy_n(reinterpret_cast<const char *>(records.data()), records.size() * sizeof(StoredKey), end);
    std::copy_n(reinterpret_cast<const char *>(padding.data()), padding.size() * sizeof(StoredKey), end);
    const bool wasOpen = m_file.isOpen();
    if (!replaceFile(path(), QByteArray::fromRawData(bytes.data(), int(bytes.size())), FileAccess::OwnerOnly, &m_error,
                     &m_file)) {
        if (wasOpen && !m_file.isOpen())
            open();
        return false;
    }
    restart();
    m_room = room;
    return true;
}

} // namespace kel
