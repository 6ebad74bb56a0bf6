#include "record/KelRecordMouseTrack.h"

#include "keymouse/KelKeyMouseHook.h"
#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "screen/KelCursorPixmap.h"

#include <QDebug>

#include <atomic>
#include <optional>
#include <utility>

using namespace kel;

namespace
{
// What the last frame of any recording in this process found: a pointer that was hidden when one recording ended and
// still is when the next one starts has not disappeared again.
std::atomic<bool> isCursorPresent{true};
std::atomic<bool> isCursorInside{true};

QString buttonName(int button)
{
    switch (button) {
    case 1:
        return QStringLiteral("left");
    case 2:
        return QStringLiteral("right");
    case 4:
        return QStringLiteral("middle");
    default:
        return QStringLiteral("unknown");
    }
}
} // namespace

/// Receives buttons and wheel on the hook's thread and appends them to the track's events.
class KelRecordMouseTrackPrivate : public KelKeyMouseHook
{
public:
    KelRecordMouseTrackPrivate(const QRect &recordArea, MouseEventList &events)
        : m_recordArea(recordArea)
        , m_events(events)
    {
    }
    ~KelRecordMouseTrackPrivate() override { setHookType(NoKind); }

    void install();
    void remove();
    void setCaptureEnabled(bool enabled) { m_isCaptureEnabled = enabled; }

protected:
    bool OnMouseEvent(KelMouseEvent event) override;
    bool OnMouseWheelEvent(KelWheelEvent event) override;

private:
    bool locate(KelMouseEvent &event);

    const QRect m_recordArea;
    MouseEventList &m_events;
    std::optional<QPoint> m_lastPosition; // of events without one; of the hook's thread
    std::atomic<bool> m_isCaptureEnabled{true};
    bool m_isInstalled = false; // of the track's thread
};

void KelRecordMouseTrackPrivate::install()
{
    if (std::exchange(m_isInstalled, true))
        return;
    m_events.startTimestamps();
    setHookType(Mouse);
}

void KelRecordMouseTrackPrivate::remove()
{
    if (std::exchange(m_isInstalled, false))
        setHookType(NoKind);
}

bool KelRecordMouseTrackPrivate::OnMouseEvent(KelMouseEvent event)
{
    if (!m_isCaptureEnabled || event.button == 0)
        return false;
    if (!event.hasPosition && !locate(event))
        return false;
    const bool isPress = event.state == 1;
    // A button that was pressed inside may be released outside.
    if (!isPress || m_recordArea.contains(event.globalPosition))
        m_events.addButton(isPress, buttonName(event.button), event.globalPosition - m_recordArea.topLeft());
    return false;
}

/// Gives the event the position that the screen capture last saw the pointer at. False if it sees none: a click that
/// nobody can place is not recorded.
bool KelRecordMouseTrackPrivate::locate(KelMouseEvent &event)
{
    const auto pointer = KelCursorPixmap::GetCursor(m_recordArea);
    if (pointer->hasCursor())
        m_lastPosition = pointer->position();
    else if (event.state == 1)
        m_lastPosition.reset();
    event.globalPosition = m_lastPosition.value_or(QPoint());
    return m_lastPosition.has_value();
}

bool KelRecordMouseTrackPrivate::OnMouseWheelEvent(KelWheelEvent event)
{
    if (m_isCaptureEnabled)
        m_events.addWheel(event.delta);
    return false;
}

KelRecordMouseTrack::KelRecordMouseTrack(const QRect &recordArea, const QString &trackDir)
    : KelRecordTrack(recordArea, trackDir)
    , m_eventWriter(trackDir)
    , m_cursorWriter(trackDir)
    , m_snapshot(KelCursorPixmap::GetCursor(recordArea))
    , d(std::make_unique<KelRecordMouseTrackPrivate>(recordArea, m_events))
{
    setObjectName(KelTrackNames::kMouse);
}

KelRecordMouseTrack::~KelRecordMouseTrack() = default;

void KelRecordMouseTrack::startRecording()
{
    d->install();
}

void KelRecordMouseTrack::recordFrame(int frameIndex)
{
    m_events.setCurrentFrame(frameIndex);
    m_snapshot = KelCursorPixmap::GetCursor(recordArea());
    const KelCursorPixmap &pointer = *m_snapshot;
    if (!pointer.hasCursor()) {
        if (isCursorPresent.exchange(false))
            m_events.hide();
        return;
    }
    isCursorPresent = true;
    if (!recordArea().contains(pointer.position())) {
        if (isCursorInside.exchange(false))
            m_events.hide();
        return;
    }
    isCursorInside = true;

    const QPoint position = pointer.position() - recordArea().topLeft();
    const bool hasMoved = position != m_events.position();
    const QString cursor = m_events.cursor();
    if (!hasMoved && !cursor.isEmpty())
        return; // a shape that changes while the pointer rests is recorded when it moves
    const QString type = pointer.type();
    if (type != cursor) {
        if (!m_cursorWriter.contains(type) && !m_cursorWriter.add(type, pointer.pixmap(), pointer.hotspot()))
            fail(m_cursorWriter.failedPath(), m_cursorWriter.errorString());
        m_events.changeCursor(type, position);
    }
    if (hasMoved)
        m_events.move(position);
}

void KelRecordMouseTrack::checkpoint(qint64)
{
    if (!m_cursorWriter.isListCurrent())
        writeCursorList();
    writeEvents();
}

void KelRecordMouseTrack::stopRecording(qint64, qint64)
{
    d->remove();
    writeCursorList();
    writeEvents();
    m_eventWriter.close(); // a second stop writes everything again
}

void KelRecordMouseTrack::setCaptureEnabled(bool enabled)
{
    d->setCaptureEnabled(enabled);
}

void KelRecordMouseTrack::writeEvents()
{
    const std::size_t first = m_eventWriter.firstNeeded();
    if (!m_eventWriter.update(first, m_events.eventsFrom(first)))
        fail(m_eventWriter.failedPath(), m_eventWriter.errorString());
}

void KelRecordMouseTrack::writeCursorList()
{
    if (!m_cursorWriter.writeList())
        fail(m_cursorWriter.failedPath(), m_cursorWriter.errorString());
}

/// Reports the first failure only; the other files are still written.
void KelRecordMouseTrack::fail(const QString &path, const QString &error)
{
    if (std::exchange(m_hasFailed, true))
        return;
    qCWarning(logRecord) << "[KelRecordMouseTrack] cannot write" << path << error;
    reportFailure(objectName(), QStringLiteral("cannot write %1: %2").arg(path, error));
}
