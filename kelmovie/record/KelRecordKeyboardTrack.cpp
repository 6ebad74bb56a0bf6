#include "record/KelRecordKeyboardTrack.h"

#include "files/PrivateFile.h"
#include "keymouse/KelKeyMouseHook.h"
#include "logging/Log.h"
#include "record/EventFrameStamp.h"
#include "recording/KelRecordingFiles.h"

#include <QDebug>

#include <algorithm>
#include <mutex>
#include <set>
#include <utility>
#include <vector>

using namespace kel;

/// Receives keys on the hook's thread and keeps them for the track's thread. Thread-safe.
///
/// Removing a hook waits for its callback, which locks m_mutex. The hook is therefore installed and removed under
/// another mutex, m_switchMutex, which also keeps switches in order.
class KelRecordKeyboardTrackPrivate : public KelKeyMouseHook
{
public:
    using AtResume = KelRecordKeyboardTrack::AtResume;

    explicit KelRecordKeyboardTrackPrivate(AtResume atResume)
        : m_atResume(atResume)
    {
    }
    ~KelRecordKeyboardTrackPrivate() override { setHookType(NoKind); }

    void setControlShortcuts(const QVector<QKeySequence> &shortcuts);
    void setCurrentFrame(int frameIndex) { m_frameStamp.setCurrentFrame(frameIndex); }
    /// Starts or resumes; false if there are records from before.
    bool begin();
    void suspend();
    void pause();
    void end();
    void switchOn();
    void switchOff();
    std::pair<std::size_t, StoredKeyRecords> recordsFor(const KeyLogWriter &target);
    StoredKeyRecords takeRecords();

protected:
    bool OnKeyboardEvent(KelKeyboardEvent event) override;

private:
    struct Combination {
        std::set<int> modifiers;
        int key;
    };

    void remove(bool marksGap);
    void add(int key, bool isPressed);
    void dropControlShortcut();

    const AtResume m_atResume;
    EventFrameStamp m_frameStamp;
    std::mutex m_switchMutex; // locked before m_mutex
    bool m_isSwitchedOff = false;
    std::vector<Combination> m_controlShortcuts;
    std::mutex m_mutex; // guards what follows; the two flags change only with both held
    StoredKeyRecords m_records;
    bool m_isRecording = false;
    bool m_isHookInstalled = false; // its keys are recorded
    bool m_isSuspended = false;     // a pause or stop is to follow; keys are ignored
};

void KelRecordKeyboardTrackPrivate::setControlShortcuts(const QVector<QKeySequence> &shortcuts)
{
    static const std::pair<int, int> modifiers[] = {
        {Qt::CTRL, Qt::Key_Control}, {Qt::ALT, Qt::Key_Alt}, {Qt::SHIFT, Qt::Key_Shift}, {Qt::META, Qt::Key_Meta}};
    m_controlShortcuts.clear();
    for (const QKeySequence &shortcut : shortcuts) {
        if (shortcut.isEmpty())
            continue;
        Combination combination{{}, shortcut[0] & ~int(Qt::KeyboardModifierMask)};
        for (const auto &[modifier, key] : modifiers) {
            if (shortcut[0] & modifier)
                combination.modifiers.insert(key);
        }
        m_controlShortcuts.push_back(combination);
    }
}

bool KelRecordKeyboardTrackPrivate::begin()
{
    std::lock_guard switches(m_switchMutex);
    if (m_atResume == AtResume::Discard)
        takeRecords();
    // A user who switched capture off may be typing a password: neither a resume nor a late start switches it on.
    if (!m_isSwitchedOff)
        setHookType(Keyboard);
    std::lock_guard lock(m_mutex);
    m_isRecording = true;
    m_isSuspended = false;
    m_isHookInstalled = !m_isSwitchedOff;
    const bool isNew = m_records.empty();
    if (m_isSwitchedOff || !isNew)
        add(0, !m_isSwitchedOff);
    return isNew;
}

void KelRecordKeyboardTrackPrivate::suspend()
{
    std::lock_guard lock(m_mutex);
    if (!m_isSuspended)
        dropControlShortcut();
    m_isSuspended = true;
}

/// Called with m_mutex locked. The last key of the combination may not have arrived yet.
void KelRecordKeyboardTrackPrivate::dropControlShortcut()
{
    for (const Combination &combination : m_controlShortcuts) {
        const auto isOther = [&](const StoredKeyRecord &record) {
            return !record.pressed || (record.key != combination.key && combination.modifiers.count(record.key) == 0);
        };
        const auto first = std::find_if(m_records.rbegin(), m_records.rend(), isOther).base();
        std::set<int> missing(combination.modifiers);
        std::for_each(first, m_records.end(), [&](const StoredKeyRecord &record) { missing.erase(record.key); });
        if (missing.empty() && first != m_records.end()) {
            m_records.erase(first, m_records.end());
            return;
        }
    }
}

void KelRecordKeyboardTrackPrivate::pause()
{
    remove(m_atResume == AtResume::Keep);
}

void KelRecordKeyboardTrackPrivate::end()
{
    remove(false);
}

void KelRecordKeyboardTrackPrivate::remove(bool marksGap)
{
    std::lock_guard switches(m_switchMutex);
    {
        std::lock_guard lock(m_mutex);
        if (marksGap && m_isHookInstalled)
            add(0, false);
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
        m_isHookInstalled = false; // first: keys that arrive before the hook is removed are not recorded
        add(0, false);
    }
    setHookType(NoKind);
}

/// The records that an update of `target` needs, preceded by the number of the first.
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
    if (m_isRecording && m_isHookInstalled && !m_isSuspended)
        add(event.key, event.state == 1);
    return false;
}

/// Called with m_mutex locked.
void KelRecordKeyboardTrackPrivate::add(int key, bool isPressed)
{
    m_records.push_back({qint32_le(key), quint32_le(isPressed), qint32_le(m_frameStamp.frameOfEvent())});
}

KelRecordKeyboardTrack::KelRecordKeyboardTrack(const QRect &recordArea, const QString &trackDir, AtResume atResume)
    : KelRecordTrack(recordArea, trackDir)
    , d(std::make_unique<KelRecordKeyboardTrackPrivate>(atResume))
    , m_file(KelRecordingFiles::path(trackDir, KelRecordingFiles::kKeyLog), recordArea.size())
{
    setObjectName(KelTrackNames::kKeyboard);
    makePrivateDirectory(trackDir); // what fails here fails again when the file is created
}

KelRecordKeyboardTrack::~KelRecordKeyboardTrack() = default;

void KelRecordKeyboardTrack::recordFrame(int frameIndex)
{
    d->setCurrentFrame(frameIndex);
}

void KelRecordKeyboardTrack::startRecording()
{
    if (!m_coreDumpBlock)
        m_coreDumpBlock.emplace();
    if (d->begin())
        m_file.restart();
}

void KelRecordKeyboardTrack::setControlShortcuts(const QVector<QKeySequence> &shortcuts)
{
    d->setControlShortcuts(shortcuts);
}

void KelRecordKeyboardTrack::suspend()
{
    d->suspend();
}

void KelRecordKeyboardTrack::pauseRecording()
{
    d->pause();
}

void KelRecordKeyboardTrack::stopRecording(qint64, qint64)
{
    d->end();
    const bool isWritten = m_file.finish(d->takeRecords());
    m_coreDumpBlock.reset();
    if (isWritten)
        return;
    qCWarning(logRecord) << "KelRecordKeyboardTrack: 无法写入文件:" << m_file.path();
    fail();
}

void KelRecordKeyboardTrack::checkpoint(qint64)
{
    const auto [first, records] = d->recordsFor(m_file);
    if (!m_file.update(first, records))
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
    reportFailure(objectName(), QStringLiteral("cannot write %1: %2").arg(m_file.path(), m_file.errorString()));
}
