#pragma once

#include "playback/mouse/MouseClick.h"

#include <QString>

#include <array>
#include <limits>
#include <vector>

namespace kel
{

/// All that was clicked and turned, by logic frame.
class ClickList
{
public:
    using Iterator = std::vector<MouseClick>::const_iterator;
    struct Range {
        Iterator first;
        Iterator last;
        Iterator begin() const { return first; }
        Iterator end() const { return last; }
    };

    /// Reads the file; false, and the list is empty, when it cannot be used.
    bool load(const QString &path);

    /// What happened after frame `after` up to and including frame `last`; within a frame in the order of the file.
    Range between(int after, int last) const;
    /// Whether `button` was pressed at all before `frame`.
    bool isPressedBefore(MouseButton button, int frame) const { return m_firstPress[int(button)] < frame; }

private:
    static constexpr int kNever = std::numeric_limits<int>::max();

    std::vector<MouseClick> m_clicks; // frames rising or equal
    std::array<int, 4> m_firstPress{kNever, kNever, kNever, kNever};
};

} // namespace kel
