#pragma once

#include "record/EventFrameStamp.h"
#include "recording/input/MouseTrackEvent.h"

#include <QElapsedTimer>
#include <QPoint>
#include <QString>

#include <cstddef>
#include <deque>
#include <mutex>
#include <vector>

namespace kel
{

/// The pointer events of a recording in the order in which they happened, and the last sampled state of the pointer,
/// which buttons and wheel refer to. Every event gets its logic frame and timestamp here. Positions are relative to the
/// recorded rectangle. Thread-safe.
class MouseEventList
{
public:
    /// Sets the time from which timestamps count, by a clock that adjustments of the system time do not affect. Call it
    /// before adding events.
    void startTimestamps();

    /// Sets the logic frame of the events that follow.
    void setCurrentFrame(int frameIndex) { m_frameStamp.setCurrentFrame(frameIndex); }

    QString cursor() const;  ///< the last sampled shape, empty at first
    QPoint position() const; ///< the last sampled position, (0, 0) at first

    void hide();
    void move(const QPoint &position);
    /// The first shape of a recording is no change and not recorded.
    void changeCursor(const QString &cursor, const QPoint &position);
    /// Has the current shape, but a position of its own.
    void addButton(bool isPress, const QString &button, const QPoint &position);
    /// Has the last sampled position.
    void addWheel(int delta);

    /// The events from number `first` on.
    std::vector<MouseTrackEvent> eventsFrom(std::size_t first) const;

private:
    void append(const QString &action, const QPoint &position, MouseTrackEvent event);

    EventFrameStamp m_frameStamp;
    mutable std::mutex m_mutex; // guards what follows
    std::deque<MouseTrackEvent> m_events;
    QString m_cursor;
    QPoint m_position{0, 0};
    QElapsedTimer m_timer;
};

} // namespace kel
