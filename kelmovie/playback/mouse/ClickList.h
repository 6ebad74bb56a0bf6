#pragma once

#include "playback/mouse/MouseClick.h"

#include <QString>

#include <array>
#include <limits>
#include <vector>

namespace kel
{

/// All clicks and turns of the wheel of a recording, by logic frame.
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

    /// Reads the file. On failure returns false and leaves the list empty.
    bool load(const QString &path);

    /// The events after frame `after`, up to and including frame `last`; within a frame in the order of the file.
    Range between(int after, int last) const;
    /// Whether there is any press of `button` before `frame`.
    bool isPressedBefore(MouseButton button, int frame) const { return m_firstPress[int(button)] < frame; }

private:
    static constexpr int kNever = std::numeric_limits<int>::max();

    std::vector<MouseClick> m_clicks; // sorted by frame
    std::array<int, 4> m_firstPress{kNever, kNever, kNever, kNever};
};

} // namespace kel
