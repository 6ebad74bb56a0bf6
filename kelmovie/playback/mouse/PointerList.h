#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

#include <string>
#include <unordered_map>
#include <vector>

namespace kel
{

struct MouseRecord;

/// Where the pointer was, and what it looked like, at every logic frame. Sixteen bytes a frame in which it moved; any
/// question is answered in logarithmic time.
class PointerList
{
public:
    struct Sample {
        int frame;
        QPoint position; // from the record area's top-left corner, in logical pixels
        int cursor;      // hidden, or a number for cursorId()
    };
    static constexpr int hidden = -1;

    /// Reads the file; false, and the list is empty, when it cannot be used.
    bool load(const QString &path);

    /// The last record, in the order of the file, whose frame is not after `frame`; null when there is none.
    const Sample *at(int frame) const;
    /// The smallest frame of any record that is after `frame`; -1 when there is none.
    int nextFrame(int frame) const;
    /// Cursors are numbered 0 to cursorIds().size() - 1.
    const QStringList &cursorIds() const { return m_cursorIds; }

private:
    void append(const MouseRecord &record);
    /// The first sample whose frame is after `frame`.
    std::vector<Sample>::const_iterator after(int frame) const;
    int cursorNumber(const std::string &id);

    std::vector<Sample> m_samples;    // frames rising
    std::vector<int> m_coveredFrames; // sorted
    QStringList m_cursorIds;
    std::unordered_map<std::string, int> m_cursorNumbers; // while loading
};

} // namespace kel
