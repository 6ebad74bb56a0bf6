#include "playback/mouse/ClickList.h"

#include "recording/input/MouseEventReader.h"

#include <algorithm>
#include <utility>

namespace kel
{

namespace
{

constexpr qint64 kLongPressMs = 500;

MouseButton buttonOf(const std::string &name)
{
    if (name == "left")
        return MouseButton::Left;
    if (name == "right")
        return MouseButton::Right;
    return name == "middle" ? MouseButton::Middle : MouseButton::Other;
}

void append(std::vector<MouseClick> &clicks, const MouseRecord &record)
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
    click.timestamp = record.timestamp;
    clicks.push_back(click);
}

/// `release` may be null.
void assignRelease(MouseClick &click, const MouseClick *release)
{
    click.isPaired = release && release->timestamp >= 1;
    click.releaseFrame = click.isPaired ? release->frame : 0;
    click.isLong =
        click.isPaired && click.releaseFrame > click.frame && release->timestamp - click.timestamp >= kLongPressMs;
}

/// Assigns to each click the first release of its button that is later both in the file and in time. The list is walked
/// from its end with a stack of the releases seen so far. A release is dropped once another one before it in the file
/// has the same or a later frame, so the frames on the stack decrease and the nearest release is on top. If none is
/// later in time, the release is in the frame of the click: a quick tap.
void pair(std::vector<MouseClick> &clicks)
{
    std::array<std::vector<const MouseClick *>, 4> releases;
    for (auto click = clicks.rbegin(); click != clicks.rend(); ++click) {
        auto &later = releases[std::size_t(click->button)];
        if (click->action == MouseClick::Action::Release) {
            while (!later.empty() && later.back()->frame <= click->frame)
                later.pop_back();
            later.push_back(&*click);
        } else if (click->action == MouseClick::Action::Click) {
            const auto end = std::partition_point(
                later.begin(), later.end(), [&](const MouseClick *release) { return release->frame > click->frame; });
            if (end != later.begin())
                assignRelease(*click, *std::prev(end));
            else if (!later.empty() && later.back()->frame == click->frame)
                assignRelease(*click, later.back());
        }
    }
}

} // namespace

bool ClickList::load(const QString &path)
{
    *this = ClickList();
    std::vector<MouseClick> clicks;
    if (!readMouseEvents(path, [&](const MouseRecord &record) { append(clicks, record); }))
        return false;
    pair(clicks);
    for (const MouseClick &click : clicks) {
        int &first = m_firstPress[std::size_t(click.button)];
        if (click.action == MouseClick::Action::Click)
            first = std::min(first, click.frame);
    }
    m_clicks = std::move(clicks);
    std::stable_sort(m_clicks.begin(), m_clicks.end(),
                     [](const MouseClick &a, const MouseClick &b) { return a.frame < b.frame; });
    return true;
}

void ClickList::pairNearestReleases()
{
    std::array<const MouseClick *, 4> following{}; // press or release of each button
    for (auto click = m_clicks.rbegin(); click != m_clicks.rend(); ++click) {
        if (click->action == MouseClick::Action::Wheel)
            continue;
        const MouseClick *&next = following[std::size_t(click->button)];
        if (click->action == MouseClick::Action::Click)
            assignRelease(*click, next && next->action == MouseClick::Action::Release ? next : nullptr);
        next = &*click;
    }
}

ClickList::Range ClickList::between(int after, int last) const
{
    const auto isAfter = [](int frame, const MouseClick &click) { return frame < click.frame; };
    const auto first = std::upper_bound(m_clicks.begin(), m_clicks.end(), after, isAfter);
    return {first, std::upper_bound(first, m_clicks.end(), last, isAfter)};
}

} // namespace kel
