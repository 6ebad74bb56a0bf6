#include "playback/mouse/ClickList.h"

#include "recording/input/MouseEventReader.h"

#include <algorithm>

namespace kel
{

namespace
{

constexpr qint64 kLongPressMs = 500;

struct TimedClick {
    MouseClick click;
    qint64 timestamp;
};

MouseButton buttonOf(const std::string &name)
{
    if (name == "left")
        return MouseButton::Left;
    if (name == "right")
        return MouseButton::Right;
    return name == "middle" ? MouseButton::Middle : MouseButton::Other;
}

void append(std::vector<TimedClick> &clicks, const MouseRecord &record)
{
    MouseClick click;
    if (record.action == "release")
        click.action = MouseClick::Action::Release;
    else if (record.action == "wheel")
        click.action = MouseClick::Action::Wheel;
    else if (record.action != "click")
        return;
    click.button = buttonOf(record.button);
    click.frame = record.frame;
    click.position = QPoint(record.x, record.y);
    click.delta = record.delta;
    clicks.push_back({click, record.timestamp});
}

/// Assigns to each click the first release of its button that is later both in the file and in time. The list is walked
/// from its end with a stack of the releases seen so far. A release is dropped once another one before it in the file
/// has the same or a later frame, so the frames on the stack decrease and the nearest release is on top. If none is
/// later in time, the release is in the frame of the click: a quick tap.
void pair(std::vector<TimedClick> &clicks)
{
    std::array<std::vector<const TimedClick *>, 4> releases;
    for (auto entry = clicks.rbegin(); entry != clicks.rend(); ++entry) {
        MouseClick &click = entry->click;
        auto &later = releases[std::size_t(click.button)];
        if (click.action == MouseClick::Action::Release) {
            while (!later.empty() && later.back()->click.frame <= click.frame)
                later.pop_back();
            later.push_back(&*entry);
        } else if (click.action == MouseClick::Action::Click) {
            const auto end = std::partition_point(later.begin(), later.end(), [&](const TimedClick *release) {
                return release->click.frame > click.frame;
            });
            const TimedClick *release = nullptr;
            if (end != later.begin())
                release = *std::prev(end);
            else if (!later.empty() && later.back()->click.frame == click.frame)
                release = later.back();
            if (!release || release->timestamp < 1)
                continue;
            click.isPaired = true;
            click.releaseFrame = release->click.frame;
            click.isLong = click.releaseFrame > click.frame && release->timestamp - entry->timestamp >= kLongPressMs;
        }
    }
}

} // namespace

bool ClickList::load(const QString &path)
{
    *this = ClickList();
    std::vector<TimedClick> clicks;
    if (!readMouseEvents(path, [&](const MouseRecord &record) { append(clicks, record); }))
        return false;
    pair(clicks);
    m_clicks.reserve(clicks.size());
    for (const TimedClick &entry : clicks) {
        m_clicks.push_back(entry.click);
        int &first = m_firstPress[std::size_t(entry.click.button)];
        if (entry.click.action == MouseClick::Action::Click)
            first = std::min(first, entry.click.frame);
    }
    std::stable_sort(m_clicks.begin(), m_clicks.end(),
                     [](const MouseClick &a, const MouseClick &b) { return a.frame < b.frame; });
    return true;
}

ClickList::Range ClickList::between(int after, int last) const
{
    const auto isAfter = [](int frame, const MouseClick &click) { return frame < click.frame; };
    const auto first = std::upper_bound(m_clicks.begin(), m_clicks.end(), after, isAfter);
    return {first, std::upper_bound(first, m_clicks.end(), last, isAfter)};
}

} // namespace kel
