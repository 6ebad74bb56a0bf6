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

/// Position and cursor of the pointer at every logic frame. Takes 16 bytes per frame in which the pointer moved;
/// lookups take logarithmic time.
class PointerList
{
public:
    struct Sample {
        int frame;
        QPoint position; // from the record area's top-left corner, in logical pixels
        int cursor;      // kHidden, or an index of cursorIds()
    };
    static constexpr int kHidden = -1;

    /// Reads the file. On failure returns false and leaves the list empty.
    bool load(const QString &path);

    /// The last record, in the order of the file, whose frame is not after `frame`; null when there is none.
    const Sample *at(int frame) const;
    /// The smallest frame of any record after `frame`; -1 when there is none.
    int nextFrame(int frame) const;
    const QStringList &cursorIds() const { return m_cursorIds; }

private:
    void append(const MouseRecord &record);
    /// The first sample whose frame is after `frame`.
    std::vector<Sample>::const_iterator after(int frame) const;
    int cursorNumber(const std::string &id);

    std::vector<Sample> m_samples;    // sorted by frame
    std::vector<int> m_removedFrames; // sorted; of records that at() never returns
    QStringList m_cursorIds;
    std::unordered_map<std::string, int> m_cursorNumbers; // only while loading
};

} // namespace kel
