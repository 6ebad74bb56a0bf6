#include "record/KelRecordMouseTrack.h"

#include "keymouse/KelKeyMouseHook.h"
#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "recording/input/CursorListWriter.h"
#include "recording/input/MouseEventWriter.h"
#include "screen/KelCursorPixmap.h"

#include <QDateTime>
#include <QDebug>

#include <atomic>
#include <deque>
#include <mutex>

using namespace kel;

namespace
{
// What the last frame saw, of whichever recording it was: a pointer that is away when a recording starts, and was away
// at the end of the one before, does not disappear anew.
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

/// What the hook's thread and the track's share, and what only the latter uses.
class KelRecordMouseTrackPrivate : public KelKeyMouseHook
{
public:
    KelRecordMouseTrackPrivate(const QRect &area, const QString &dir)
        : recordArea(area)
        , events(dir)
        , cursors(dir)
        , snapshot(KelCursorPixmap::GetCursor(area))
    {
    }
    ~KelRecordMouseTrackPrivate() override { setHookType(NoKind); }

    void begin();
    void setFrame(int frameIndex);
    void setCursor(const QString &type);
    void setPosition(const QPoint &position);
    void append(const QString &action, const QPoint &position, const QString &cursor);
    std::vector<MouseTrackEvent> eventsFrom(std::size_t first);

    const QRect recordArea;
    std::atomic<bool> isCaptureEnabled{true};

    // Of the track's thread; the first three are written under the lock.
    QString currentCursor;
    QPoint lastPosition{0, 0};
    int currentFrame = 0;
    bool isHookInstalled = false;
    bool hasFailed = false;
    MouseEventWriter events;
    CursorListWriter cursors;
    std::shared_ptr<const KelCursorPixmap> snapshot; // the last; kept, it makes the next one cheap

protected:
    bool OnMouseEvent(KelMouseEvent event) override;
    bool OnMouseWheelEvent(KelWheelEvent event) override;

private:
    void add(MouseTrackEvent event);

    std::mutex m_mutex; // guards what follows, and the above against the hook
    std::deque<MouseTrackEvent> m_events;
    qint64 m_startTimeMs = 0;
};

void KelRecordMouseTrackPrivate::begin()
{
    {
        std::lock_guard lock(m_mutex); // before the first event asks for it
        m_startTimeMs = QDateTime::currentMSecsSinceEpoch();
    }
    setHookType(Mouse);
    isHookInstalled = true;
}

void KelRecordMouseTrackPrivate::setFrame(int frameIndex)
{
    std::lock_guard lock(m_mutex);
    currentFrame = frameIndex;
}

void KelRecordMouseTrackPrivate::setCursor(const QString &type)
{
    std::lock_guard lock(m_mutex);
    currentCursor = type;
}

void KelRecordMouseTrackPrivate::setPosition(const QPoint &position)
{
    std::lock_guard lock(m_mutex);
    lastPosition = position;
}

void KelRecordMouseTrackPrivate::append(const QString &action, const QPoint &position, const QString &cursor)
{
    MouseTrackEvent event;
    event.x = position.x();
    event.y = position.y();
    event.action = action;
    event.cursor = cursor;
    std::lock_guard lock(m_mutex);
    add(std::move(event));
}

std::vector<MouseTrackEvent> KelRecordMouseTrackPrivate::eventsFrom(std::size_t first)
{
    std::lock_guard lock(m_mutex);
    return {m_events.begin() + std::ptrdiff_t(first), m_events.end()};
}

bool KelRecordMouseTrackPrivate::OnMouseEvent(KelMouseEvent event)
{
    if (!isCaptureEnabled || event.button == 0)
        return false;
    const bool isPress = event.state == 1;
    // A button that was pressed inside may be released outside.
    if (isPress && !recordArea.contains(event.globalPosition))
        return false;
    const QPoint position = event.globalPosition - recordArea.topLeft();
    MouseTrackEvent record;
    record.x = position.x();
    record.y = position.y();
    record.action = isPress ? QStringLiteral("click") : QStringLiteral("release");
    record.button = buttonName(event.button);
    std::lock_guard lock(m_mutex);
    record.cursor = currentCursor;
    add(std::move(record));
    return false;
}

bool KelRecordMouseTrackPrivate::OnMouseWheelEvent(KelWheelEvent event)
{
    if (!isCaptureEnabled)
        return false;
    MouseTrackEvent record;
    record.action = QStringLiteral("wheel");
    record.delta = event.delta;
    std::lock_guard lock(m_mutex);
    record.x = lastPosition.x();
    record.y = lastPosition.y();
    add(std::move(record));
    return false;
}

/// With the lock held.
void KelRecordMouseTrackPrivate::add(MouseTrackEvent event)
{
    event.frame = currentFrame;
    event.timestamp = QDateTime::currentMSecsSinceEpoch() - m_startTimeMs;
    m_events.push_back(std::move(event));
}

KelRecordMouseTrack::KelRecordMouseTrack(const QRect &recordArea, const QString &trackDir)
    : KelRecordTrack(recordArea, trackDir)
    , d(std::make_unique<KelRecordMouseTrackPrivate>(recordArea, trackDir))
{
    setObjectName(KelTrackNames::kMouse);
}

KelRecordMouseTrack::~KelRecordMouseTrack() = default;

void KelRecordMouseTrack::startRecording()
{
    if (!d->isHookInstalled)
        d->begin();
}

void KelRecordMouseTrack::recordFrame(int frameIndex)
{
    d->setFrame(frameIndex);
    d->snapshot = KelCursorPixmap::GetCursor(d->recordArea);
    const KelCursorPixmap &pointer = *d->snapshot;
    const auto hide = [this] { d->append(QStringLiteral("hide"), QPoint(-1, -1), QString()); };
    if (!pointer.hasCursor()) {
        if (isCursorPresent.exchange(false))
            hide();
        return;
    }
    isCursorPresent = true;
    if (!d->recordArea.contains(pointer.position())) {
        if (isCursorInside.exchange(false))
            hide();
        return;
    }
    isCursorInside = true;

    const QPoint position = pointer.position() - d->recordArea.topLeft();
    const bool hasMoved = position != d->lastPosition;
    if (!hasMoved && !d->currentCursor.isEmpty())
        return; // a shape that changes at rest is noticed when the pointer moves
    const QString type = pointer.type();
    if (type != d->currentCursor) {
        if (!d->cursors.contains(type) && !d->cursors.add(type, pointer.pixmap(), pointer.hotspot()))
            fail(d->cursors.failedPath(), d->cursors.errorString());
        if (!d->currentCursor.isEmpty())
            d->append(QStringLiteral("cursor_change"), position, type);
        d->setCursor(type);
    }
    if (hasMoved) {
        d->append(QStringLiteral("move"), position, type);
        d->setPosition(position);
    }
}

void KelRecordMouseTrack::checkpoint(qint64)
{
    if (!d->cursors.isListCurrent())
        writeCursorList();
    writeEvents();
}

void KelRecordMouseTrack::stopRecording(qint64, qint64)
{
    if (d->isHookInstalled)
        d->setHookType(KelKeyMouseHook::NoKind);
    d->isHookInstalled = false;
    writeCursorList();
    writeEvents();
    d->events.close(); // a second stop writes everything again
}

void KelRecordMouseTrack::setCaptureEnabled(bool enabled)
{
    d->isCaptureEnabled = enabled;
}

void KelRecordMouseTrack::writeEvents()
{
    const std::size_t first = d->events.firstNeeded();
    if (!d->events.update(first, d->eventsFrom(first)))
        fail(d->events.failedPath(), d->events.errorString());
}

void KelRecordMouseTrack::writeCursorList()
{
    if (!d->cursors.writeList())
        fail(d->cursors.failedPath(), d->cursors.errorString());
}

/// The first failure is told; the other files are written all the same.
void KelRecordMouseTrack::fail(const QString &path, const QString &error)
{
    if (std::exchange(d->hasFailed, true))
        return;
    qCWarning(logRecord) << "[KelRecordMouseTrack] cannot write" << path << error;
    reportFailure(objectName(), QStringLiteral("cannot write %1: %2").arg(path, error));
}
