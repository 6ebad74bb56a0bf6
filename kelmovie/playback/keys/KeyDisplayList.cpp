#include "playback/keys/KeyDisplayList.h"

#include <algorithm>

namespace kel
{

bool KeyDisplayEntry::looksLike(const KeyDisplayEntry &other) const
{
    return current.type == other.current.type && current.count == other.current.count &&
           historyBegin == other.historyBegin && historyEnd == other.historyEnd && current.text == other.current.text;
}

int KeyDisplayList::indexAt(int frame) const
{
    const auto after =
        std::upper_bound(entries.begin(), entries.end(), frame,
                         [](int wanted, const KeyDisplayEntry &entry) { return wanted < entry.firstFrame; });
    if (after == entries.begin() || std::prev(after)->lastFrame < frame)
        return -1;
    return int(std::prev(after) - entries.begin());
}

int KeyDisplayList::nextFrame(int index, int frame) const
{
    if (index < 0)
        return -1;
    if (frame < entries[size_t(index)].lastFrame)
        return frame + 1;
    return size_t(index) + 1 < entries.size() ? entries[size_t(index) + 1].firstFrame : -1;
}

} // namespace kel
