#include "record/KelRecordKeyboardTrack.h"

#include "keymouse/KelKeyMouseHook.h"
#include "logging/Log.h"
#include "recording/KelRecordingFiles.h"
#include "recording/input/KeyLogWriter.h"

#include <QDebug>
#include <QDir>

#include <mutex>
#include <utility>

using namespace kel;

/// What the hook's thread, the track's and the GUI thread share.
///
/// Removing a hook waits for its callback, which takes the records' lock: the hook is installed and removed under
/// another one, that keeps these switches in order.
class KelRecordKeyboardTrackPrivate : public KelKeyMouseHook
{
public:
    KelRecordKeyboardTrackPrivate(const QString &path, const QSize &area)
        : file(path, area)
    {
    }
    ~KelRecordKeyboardTrackPrivate() override { setHookType(NoKind); }

    void setFrame(int frameIndex);
    void begin();
    void end();
    void switchOn();
    void switchOff();
    std::pair<std::size_t, StoredKeyRecords> recordsFor(const KeyLogWriter &target);
    StoredKeyRecords takeRecords();

    KeyLogWriter file; // of the track's thread

protected:
    bool OnKeyboardEvent(KelKeyboardEvent event) override;

private:
    void add(int key, bool isPressed);

    std::mutex m_switchMutex; // taken before the other
    bool m_isSwitchedOff = false;
    std::mutex m_mutex; // guards what follows; the two flags change only with both held
    StoredKeyRecords m_records;
    int m_currentFrame = 0;
    bool m_isRecording = false;
    bool m_isHookInstalled = false; // and its keys count
};

void KelRecordKeyboardTrackPrivate::setFrame(int frameIndex)
{
    std::lock_guard lock(m_mutex);
    m_currentFrame = frameIndex;
}

void KelRecordKeyboardTrackPrivate::begin()
{
    std::lock_guard switches(m_switchMutex);
    takeRecords();
    // Who has switched the keys off may be typing a password: no pause, and no start that comes late, switches them on.
    if (!m_isSwitchedOff)
        setHookType(Keyboard);
    std::lock_guard lock(m_mutex);
    m_isRecording = true;
    m_isHookInstalled = !m_isSwitchedOff;
    if (m_isSwitchedOff)
        add(0, false);
}

void KelRecordKeyboardTrackPrivate::end()
{
    std::lock_guard switches(m_switchMutex);
    {
        std::lock_guard lock(m_mutex);
        m_isRecording = false;
        m_isHookInstalled = false;
    }
    setHookType(NoKind);
}

void KelRecordKeyboardTrackPrivate::switchOn()
{
    std::lock_guard switches(m_switchMutex);
    m_isSwitchedOff = false;
    if (!m_isRecording) {
        qCWarning(logRecord) << "KelRecordKeyboardTrack: 无法启用钩子 - 未在录制状态";
        return;
    }
    if (m_isHookInstalled)
        return;
    setHookType(Keyboard);
    std::lock_guard lock(m_mutex);
    m_isHookInstalled = true;
    add(0, true);
}

void KelRecordKeyboardTrackPrivate::switchOff()
{
    std::lock_guard switches(m_switchMutex);
    m_isSwitchedOff = true;
    {
        std::lock_guard lock(m_mutex);
        if (!m_isHookInstalled)
            return;
        m_isHookInstalled = false; // at once: keys that come before the hook is gone do not count
        add(0, false);
    }
    setHookType(NoKind);
}

/// Those that an update of `target` needs, after the number of the first.
std::pair<std::size_t, StoredKeyRecords> KelRecordKeyboardTrackPrivate::recordsFor(const KeyLogWriter &target)
{
    std::lock_guard lock(m_mutex);
    const std::size_t first = target.firstNeeded(m_records.size());
    return {first, StoredKeyRecords(m_records.begin() + std::ptrdiff_t(first), m_records.end())};
}

StoredKeyRecords KelRecordKeyboardTrackPrivate::takeRecords()
{
    std::lock_guard lock(m_mutex);
    return std::exchange(m_records, {});
}

bool KelRecordKeyboardTrackPrivate::OnKeyboardEvent(KelKeyboardEvent event)
{
    std::lock_guard lock(m_mutex);
    if (m_isRecording && m_isHookInstalled)
        add(event.key, event.state == 1);
    return false;
}

/// With the records' lock held.
void KelRecordKeyboardTrackPrivate::add(int key, bool isPressed)
{
    m_records.push_back({qint32_le(key), quint32_le(isPressed), qint32_le(m_currentFrame)});
}

KelRecordKeyboardTrack::KelRecordKeyboardTrack(const QRect &recordArea, const QString &trackDir)
    : KelRecordTrack(recordArea, trackDir)
    , d(std::make_unique<KelRecordKeyboardTrackPrivate>(KelRecordingFiles::path(trackDir, KelRecordingFiles::kKeyLog),
                                                        recordArea.size()))
{
    setObjectName(KelTrackNames::kKeyboard);
    QDir().mkpath(trackDir);
}

KelRecordKeyboardTrack::~KelRecordKeyboardTrack() = default;

void KelRecordKeyboardTrack::recordFrame(int frameIndex)
{
    d->setFrame(frameIndex);
}

void KelRecordKeyboardTrack::startRecording()
{
    d->begin();
    d->file.restart();
}

void KelRecordKeyboardTrack::pauseRecording()
{
    d->end();
}

void KelRecordKeyboardTrack::stopRecording(qint64, qint64)
{
    d->end();
    if (d->file.finish(d->takeRecords()))
        return;
    qCWarning(logRecord) << "KelRecordKeyboardTrack: 无法写入文件:" << d->file.path();
    fail();
}

void KelRecordKeyboardTrack::checkpoint(qint64)
{
    const auto [first, records] = d->recordsFor(d->file);
    if (!d->file.update(first, records))
        fail();
}

void KelRecordKeyboardTrack::enableCapture()
{
    d->switchOn();
}

void KelRecordKeyboardTrack::disableCapture()
{
    d->switchOff();
}

void KelRecordKeyboardTrack::fail()
{
    reportFailure(objectName(), QStringLiteral("cannot write %1: %2").arg(d->file.path(), d->file.errorString()));
}
