#include "playback/mouse/PointerList.h"

#include "recording/input/MouseEventReader.h"

#include <algorithm>

namespace kel
{

namespace
{

bool isHidden(const MouseRecord &record)
{
    return record.action == "hide" || (record.x == -1 && record.y == -1);
}

} // namespace

bool PointerList::load(const QString &path)
{
    *this = PointerList();
    const bool isLoaded = readMouseEvents(path, [this](const MouseRecord &record) { append(record); });
    if (!isLoaded)
        *this = PointerList();
    m_samples.shrink_to_fit();
    std::sort(m_removedFrames.begin(), m_removedFrames.end());
    m_cursorNumbers.clear();
    return isLoaded;
}

/// Removes all earlier records with the same or a later frame: at() returns the last matching record in the file, which
/// cannot be one of those. Their frames are kept for nextFrame().
void PointerList::append(const MouseRecord &record)
{
    while (!m_samples.empty() && m_samples.back().frame >= record.frame) {
        if (m_samples.back().frame > record.frame)
            m_removedFrames.push_back(m_samples.back().frame);
        m_samples.pop_back();
    }
    const int cursor = isHidden(record) ? kHidden : cursorNumber(record.cursor);
    m_samples.push_back({record.frame, QPoint(record.x, record.y), cursor});
}

int PointerList::cursorNumber(const std::string &id)
{
    const auto [entry, isNew] = m_cursorNumbers.try_emplace(id, m_cursorIds.size());
    if (isNew)
        m_cursorIds.append(QString::fromStdString(id));
    return entry->second;
}

std::vector<PointerList::Sample>::const_iterator PointerList::after(int frame) const
{
    return std::upper_bound(m_samples.begin(), m_samples.end(), frame,
                            [](int wanted, const Sample &sample) { return wanted < sample.frame; });
}

const PointerList::Sample *PointerList::at(int frame) const
{
    const auto next = after(frame);
    return next == m_samples.begin() ? nullptr : &*std::prev(next);
}

int PointerList::nextFrame(int frame) const
{
    const auto sample = after(frame);
    const auto removed = std::upper_bound(m_removedFrames.begin(), m_removedFrames.end(), frame);
    if (removed == m_removedFrames.end())
        return sample == m_samples.end() ? -1 : sample->frame;
    return sample == m_samples.end() ? *removed : std::min(sample->frame, *removed);
}

} // namespace kel
