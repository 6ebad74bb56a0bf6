#include "recording/input/MouseEventReader.h"

#include "recording/RecordingFile.h"

#include <QFile>
#include <QFileInfo>

#include <rapidjson/reader.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <string_view>

namespace kel
{

namespace
{

// An hour of moves takes about 40 MB. Four million frames are 18 hours.
constexpr qint64 kMaxFileSize = 512 * 1024 * 1024;
constexpr int kMaxRecords = 4'000'000;
constexpr int kMaxFrame = 1'000'000'000;
constexpr int kMaxCoordinate = 1'000'000;
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf"; // written by editors
constexpr qint64 kMaxTimestamp = qint64(1) << 53;

/// The stream that the parser reads from: character by character, 0 at the end.
class FileStream
{
public:
    using Ch = char;

    explicit FileStream(QFile &file)
        : m_file(file)
    {
        fill();
        if (std::string_view(m_next, std::size_t(m_end - m_next)).substr(0, kByteOrderMark.size()) == kByteOrderMark)
            m_next += kByteOrderMark.size();
    }

    Ch Peek() const { return *m_next; }
    Ch Take()
    {
        const Ch taken = *m_next;
        if (m_next != m_end && ++m_next == m_end)
            fill();
        return taken;
    }
    std::size_t Tell() const { return 0; } // positions of errors are not reported

    // The parser's stream concept includes in-place writing, which is not used here.
    Ch *PutBegin() { return nullptr; }
    void Put(Ch) {}
    std::size_t PutEnd(Ch *) { return 0; }

private:
    void fill()
    {
        const qint64 size = std::max<qint64>(0, m_file.read(m_buffer.data(), qint64(m_buffer.size()) - 1));
        m_buffer[std::size_t(size)] = 0;
        m_next = m_buffer.data();
        m_end = m_next + size;
    }

    QFile &m_file;
    std::array<char, 256 * 1024> m_buffer;
    const char *m_next = nullptr;
    const char *m_end = nullptr;
};

/// The member that holds the value of a JSON key: exactly one of the pointers is set.
struct Field {
    std::string_view name;
    std::string MouseRecord::*text = nullptr;
    qint64 MouseRecord::*time = nullptr;
    int MouseRecord::*number = nullptr;
    int limit = 0;
};

constexpr std::array<Field, 8> kFields{{
    {"frame", nullptr, nullptr, &MouseRecord::frame, kMaxFrame},
    {"x", nullptr, nullptr, &MouseRecord::x, kMaxCoordinate},
    {"y", nullptr, nullptr, &MouseRecord::y, kMaxCoordinate},
    {"delta", nullptr, nullptr, &MouseRecord::delta, kMaxCoordinate},
    {"timestamp", nullptr, &MouseRecord::timestamp},
    {"action", &MouseRecord::action},
    {"button", &MouseRecord::button},
    {"cursor", &MouseRecord::cursor},
}};

template <typename Integer>
Integer bounded(double value, Integer limit)
{
    return Integer(qBound(-double(limit), value, double(limit)));
}

/// Receives the parser's events; returning false stops it.
class RecordHandler : public rapidjson::BaseReaderHandler<rapidjson::UTF8<>, RecordHandler>
{
public:
    explicit RecordHandler(const std::function<void(const MouseRecord &)> &take)
        : m_take(take)
    {
    }

    // Called for values of all other types.
    bool Default() { return isInArray(); }
    bool Int(int value) { return number(value); }
    bool Uint(unsigned value) { return number(value); }
    bool Int64(std::int64_t value) { return number(double(value)); }
    bool Uint64(std::uint64_t value) { return number(double(value)); }
    bool Double(double value) { return number(value); }
    bool String(const char *text, rapidjson::SizeType length, bool)
    {
        if (m_depth == InRecord && m_field && m_field->text)
            (m_record.*m_field->text).assign(text, length);
        return isInArray();
    }

    bool StartArray() { return enter(); }
    bool EndArray(rapidjson::SizeType) { return leave(); }
    bool StartObject()
    {
        if (m_depth == InArray)
            m_record = MouseRecord();
        return isInArray() && enter();
    }
    bool Key(const char *text, rapidjson::SizeType length, bool)
    {
        if (m_depth == InRecord) {
            const std::string_view name(text, length);
            const auto found =
                std::find_if(kFields.begin(), kFields.end(), [&](const Field &field) { return field.name == name; });
            m_field = found != kFields.end() ? &*found : nullptr;
        }
        return true;
    }
    bool EndObject(rapidjson::SizeType)
    {
        if (leave() && m_depth == InArray) {
            if (++m_count > kMaxRecords)
                return false;
            m_take(m_record);
        }
        return true;
    }

private:
    enum Depth { Outside = 0, InArray = 1, InRecord = 2, MaxDepth = 64 };

    bool isInArray() const { return m_depth >= InArray; }
    bool enter() { return ++m_depth <= MaxDepth; }
    bool leave()
    {
        --m_depth;
        return true;
    }

    bool number(double value)
    {
        if (m_depth == InRecord && m_field) {
            if (m_field->time)
                m_record.*m_field->time = bounded(value, kMaxTimestamp);
            else if (m_field->number && value == std::trunc(value) && std::abs(value) <= kMaxInt)
                m_record.*m_field->number = bounded(value, m_field->limit);
        }
        return isInArray();
    }

    static constexpr double kMaxInt = std::numeric_limits<int>::max();

    const std::function<void(const MouseRecord &)> &m_take;
    MouseRecord m_record;
    const Field *m_field = nullptr; // of the last key
    int m_depth = Outside;
    int m_count = 0;
};

} // namespace

bool readMouseEvents(const QString &path, const std::function<void(const MouseRecord &)> &take)
{
    const QFileInfo info(path);
    QFile file;
    if (!openTrackFile(&file, info.path(), info.fileName()).isEmpty() || file.size() > kMaxFileSize)
        return false;
    const auto stream = std::make_unique<FileStream>(file);
    RecordHandler handler(take);
    rapidjson::Reader reader;
    return !reader.Parse<rapidjson::kParseIterativeFlag>(*stream, handler).IsError();
}

} // namespace kel
