#include "record/MouseEventList.h"

#include <utility>

namespace kel
{

void MouseEventList::startTimestamps()
{
    std::lock_guard lock(m_mutex);
    m_timer.start();
}

QString MouseEventList::cursor() const
{
    std::lock_guard lock(m_mutex);
    return m_cursor;
}

QPoint MouseEventList::position() const
{
    std::lock_guard lock(m_mutex);
    return m_position;
}

void MouseEventList::hide()
{
    std::lock_guard lock(m_mutex);
    append(QStringLiteral("hide"), QPoint(-1, -1), {});
}

void MouseEventList::move(const QPoint &position)
{
    MouseTrackEvent event;
    std::lock_guard lock(m_mutex);
    event.cursor = m_cursor;
    append(QStringLiteral("move"), position, std::move(event));
    m_position = position;
}

void MouseEventList::changeCursor(const QString &cursor, const QPoint &position)
{
    MouseTrackEvent event;
    event.cursor = cursor;
    std::lock_guard lock(m_mutex);
    if (!m_cursor.isEmpty())
        append(QStringLiteral("cursor_change"), position, std::move(event));
    m_cursor = cursor;
}

void MouseEventList::addButton(bool isPress, const QString &button, const QPoint &position)
{
    MouseTrackEvent event;
    event.button = button;
    std::lock_guard lock(m_mutex);
    event.cursor = m_cursor;
    append(isPress ? QStringLiteral("click") : QStringLiteral("release"), position, std::move(event));
}

void MouseEventList::addWheel(int delta)
{
    MouseTrackEvent event;
    event.delta = delta;
    std::lock_guard lock(m_mutex);
    append(QStringLiteral("wheel"), m_position, std::move(event));
}

std::vector<MouseTrackEvent> MouseEventList::eventsFrom(std::size_t first) const
{
    std::lock_guard lock(m_mutex);
    return {m_events.begin() + std::ptrdiff_t(first), m_events.end()};
}

/// Called with the lock held.
void MouseEventList::append(const QString &action, const QPoint &position, MouseTrackEvent event)
{
    event.action = action;
    event.x = position.x();
    event.y = position.y();
    event.frame = m_frameStamp.frameOfEvent();
    event.timestamp = m_timer.elapsed();
    m_events.push_back(std::move(event));
}

} // namespace kel
