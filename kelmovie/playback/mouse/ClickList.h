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

    /// By default a press is paired with the first release of its button in a later frame. Pairs it with the next
    /// release of its button instead, which may be in its own frame. A press before which the last one was not released
    /// leaves that one unpaired.
    void pairNearestReleases();

    /// All events by frame, within a frame in the order of the file. Valid until the next load().
    const std::vector<MouseClick> &all() const { return m_clicks; }
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
