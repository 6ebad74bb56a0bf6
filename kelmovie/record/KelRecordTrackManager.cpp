#include "record/KelRecordTrackManager.h"

#include "files/PrivateFile.h"
#include "logging/Log.h"
#include "record/KelRecordKeyboardTrack.h"
#include "record/KelRecordMouseTrack.h"
#include "record/KelRecordScreenTrack.h"
#include "record/KelRecordTrackThreadWrap.h"
#include "record/KelRecordVoiceTrack.h"
#include "recording/KelRecordingFiles.h"
#include "recording/KelRecordingMetadata.h"
#include "style/PixelRatio.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QDebug>
#include <QElapsedTimer>

#include <utility>

namespace
{
constexpr std::chrono::milliseconds kReleaseWait{10000};
constexpr std::chrono::milliseconds kCheckpointInterval{500};
constexpr std::chrono::milliseconds kDiskWait{2000}; // at the stop
constexpr int kScreenQuality = 100;

/// Starts at the wall clock's time and is monotonic from then on.
KelRecordTrackManager::Clock steadyClock()
{
    QElapsedTimer timer;
    timer.start();
    return [epochMs = QDateTime::currentMSecsSinceEpoch(), timer] { return epochMs + timer.elapsed(); };
}

/// Video formats need even sides.
QRect withEvenSides(const QRect &area)
{
    return {area.x(), area.y(), area.width() + area.width() % 2, area.height() + area.height() % 2};
}
} // namespace

KelRecordTrackManager::KelRecordTrackManager(const QRect &recordArea, const Config &config, QObject *parent)
    : KelRecordTrackManager(recordArea, config, steadyClock(), parent)
{
}

KelRecordTrackManager::KelRecordTrackManager(const QRect &recordArea, const Config &config, Clock now, QObject *parent)
    : QObject(parent)
    , m_frameTimer(this)
    , m_checkpointTimer(this)
    , m_recordArea(withEvenSides(recordArea))
    , m_config(config)
    , m_clock(std::move(now))
    , m_frameTimes(KelRecordingFiles::frameTimesPath(config.directory))
    , m_saver(config.directory)
{
    kel::makePrivateDirectory(m_config.directory);
    m_frameTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_frameTimer, &QTimer::timeout, this, &KelRecordTrackManager::onFrameTimeout);
    m_checkpointTimer.setInterval(kCheckpointInterval);
    connect(&m_checkpointTimer, &QTimer::timeout, this, &KelRecordTrackManager::saveCheckpoint);
    createTracks();
}

KelRecordTrackManager::~KelRecordTrackManager()
{
    if (m_isRecording)
        stopRecording();
    releaseResources();
    qDeleteAll(m_threads);
    delete m_voiceTrack;
}

void KelRecordTrackManager::createTracks()
{
    if (m_config.screen)
        addTrack(new KelRecordScreenTrack(m_recordArea, createTrackDir(KelRecordingFiles::kScreenDir), 0,
                                          kScreenQuality, m_config.mouse));
    if (m_config.mouse)
        addTrack(new KelRecordMouseTrack(m_recordArea, createTrackDir(KelRecordingFiles::kMouseDir)));
    if (m_config.keyboard) {
        using AtResume = KelRecordKeyboardTrack::AtResume;
        auto *const track =
            new KelRecordKeyboardTrack(m_recordArea, createTrackDir(KelRecordingFiles::kKeyboardDir),
                                       m_config.keepsKeysAcrossPauses ? AtResume::Keep : AtResume::Discard);
        track->setControlShortcuts(m_config.controlShortcuts);
        addTrack(track);
    }
    if (m_config.systemAudio || m_config.microphone) {
        m_voiceTrack = new KelRecordVoiceTrack(m_recordArea, createTrackDir(KelRecordingFiles::kVoiceDir), this);
        m_voiceTrack->setFailureHandler(
            [this](const QString &name, const QString &problem) { addFailure(name, problem); });
        m_voiceTrack->setSystemAudioEnabled(m_config.systemAudio);
        m_voiceTrack->setMicrophoneEnabled(m_config.microphone);
    }
}

QString KelRecordTrackManager::createTrackDir(QLatin1String name)
{
    const QString path = KelRecordingFiles::path(m_config.directory, name);
    const QString problem = kel::makePrivateDirectory(path);
    if (!problem.isEmpty())
        addFailure({}, QStringLiteral("Cannot create the directory %1: %2").arg(path, problem));
    return path;
}

void KelRecordTrackManager::addTrack(KelRecordTrack *track)
{
    track->setFailureHandler([this](const QString &name, const QString &problem) { addFailure(name, problem); });
    m_threads.append(new KelRecordTrackThreadWrap(track, this));
}

void KelRecordTrackManager::startRecording()
{
    if (m_isRecording && !m_clock.isPaused())
        return;
    if (m_isRecording) {
        m_clock.resume();
    } else {
        m_frameIndex = 0;
        m_clock.start();
        m_frameTimes.restart();
        m_tickCostMs.clear();
        m_instantFps.clear();
    }
    if (m_voiceTrack)
        m_voiceTrack->noteClockChange();
    for (KelRecordTrackThreadWrap *thread : qAsConst(m_threads))
        thread->startRecording();
    if (m_voiceTrack)
        m_voiceTrack->startRecording();
    m_isRecording = true;
    saveCheckpoint();
    m_checkpointTimer.start();
    m_frameTimer.setInterval(int(1000.0 / qMax(1, m_config.fps)));
    m_frameTimer.start();
}

void KelRecordTrackManager::onFrameTimeout()
{
    if (!m_isRecording || m_clock.isPaused() || isAtFrameLimit())
        return;
    const qint64 tickStartMs = m_clock.now();
    m_frameTimes.add(m_clock.recordedMs());
    for (KelRecordTrackThreadWrap *thread : qAsConst(m_threads))
        thread->triggerFrame(m_frameIndex);
    m_tickCostMs.append(m_clock.now() - tickStartMs);
    const qint64 elapsedMs = m_clock.recordedMs();
    if (elapsedMs > 0)
        m_instantFps.append(m_frameIndex * 1000.0 / elapsedMs);
    ++m_frameIndex;

    if (isAtFrameLimit()) {
        m_frameTimer.stop();
        emit frameLimitReached();
    }
}

void KelRecordTrackManager::pauseRecording()
{
    if (!m_isRecording || m_clock.isPaused())
        return;
    m_frameTimer.stop();
    m_clock.pause();
    if (KelRecordKeyboardTrack *keyboard = keyboardTrack())
        keyboard->suspend();
    if (m_voiceTrack)
        m_voiceTrack->noteClockChange();
    for (KelRecordTrackThreadWrap *thread : qAsConst(m_threads))
        thread->pauseRecording();
    if (m_voiceTrack)
        m_voiceTrack->pauseRecording();
    saveCheckpoint();
}

void KelRecordTrackManager::stopRecording()
{
    qCWarning(kel::logRecord) << "[KelRecordTrackManager::stopRecording]";
    qCWarning(kel::logRecord) << "[KelRecordTrackManager]";
    if (!m_isRecording)
        return;
    m_frameTimer.stop();
    m_checkpointTimer.stop();
    const qint64 durationMs = m_clock.recordedMs();
    if (KelRecordKeyboardTrack *keyboard = keyboardTrack())
        keyboard->suspend();
    if (m_voiceTrack)
        m_voiceTrack->noteClockChange();
    if (m_clock.isPaused())
        qCWarning(kel::logRecord) << "[KelRecordTrackManager]";

    qCWarning(kel::logRecord) << "[KelRecordTrackManager] 开始停止所有轨道 (共" << m_threads.size() << "个)";
    for (int i = 0; i < m_threads.size(); ++i) {
        qCWarning(kel::logRecord) << "[KelRecordTrackManager] 停止轨道" << i
                                  << "，指针:" << static_cast<void *>(m_threads[i]);
        m_threads[i]->stopRecording(m_frameIndex, durationMs);
        qCWarning(kel::logRecord) << "[KelRecordTrackManager] 轨道" << i << "停止完成";
    }
    qCWarning(kel::logRecord) << "[KelRecordTrackManager] 所有轨道停止完成";
    if (m_voiceTrack) {
        qCWarning(kel::logRecord) << "[KelRecordTrackManager] 停止音频轨道，指针:" << static_cast<void *>(m_voiceTrack);
        m_voiceTrack->stopRecording(m_frameIndex, durationMs);
        qCWarning(kel::logRecord) << "[KelRecordTrackManager] 音频轨道停止完成";
    } else {
        qCWarning(kel::logRecord) << "[KelRecordTrackManager] 没有音频轨道";
    }

    logStatistics(durationMs);
    saveFrameTimes();
    saveMetadata(durationMs);
    m_isRecording = false;
}

bool KelRecordTrackManager::releaseResources()
{
    const QDeadlineTimer deadline(kReleaseWait); // for all tracks together
    bool isComplete = true;
    for (KelRecordTrackThreadWrap *thread : qAsConst(m_threads)) {
        // The stop may still be queued. Releasing before it has run would lose the end of the recording, and callers
        // read the files of all tracks afterwards.
        if (!thread->drain(std::chrono::milliseconds(deadline.remainingTime()))) {
            thread->track()->reportFailure(thread->track()->objectName(),
                                           QStringLiteral("its files are not complete yet"));
            isComplete = false;
        } else if (auto *screen = qobject_cast<KelRecordScreenTrack *>(thread->track())) {
            screen->releaseResources();
        }
    }
    if (std::exchange(m_savedDurationMs, -1) >= 0) { // the tracks have completed their files after the metadata
        m_saver.save();
        m_saver.wait(kDiskWait);
        reportFailures({m_reported.metadata, m_saver.failures().sync});
    }
    m_tickCostMs.clear();
    m_instantFps.clear();
    return isComplete;
}

template <typename Track>
Track *KelRecordTrackManager::findTrack() const
{
    for (const KelRecordTrackThreadWrap *thread : m_threads) {
        if (auto *track = qobject_cast<Track *>(thread->track()))
            return track;
    }
    return nullptr;
}

KelRecordMouseTrack *KelRecordTrackManager::mouseTrack() const
{
    return findTrack<KelRecordMouseTrack>();
}

KelRecordKeyboardTrack *KelRecordTrackManager::keyboardTrack() const
{
    return findTrack<KelRecordKeyboardTrack>();
}

QList<KelRecordTrackManager::Failure> KelRecordTrackManager::takeFailures()
{
    std::lock_guard lock(m_failuresMutex);
    return std::exchange(m_failures, {});
}

void KelRecordTrackManager::addFailure(const QString &track, const QString &problem)
{
    {
        std::lock_guard lock(m_failuresMutex);
        m_failures.append({track, problem});
    }
    emit trackFailed();
}

KelRecordingMetadata KelRecordTrackManager::metadata(qint64 durationMs) const
{
    KelRecordingMetadata metadata;
    metadata.recordArea = m_recordArea;
    metadata.fps = m_config.fps;
    metadata.totalFrames = durationMs > 0 ? qint64(m_config.fps * durationMs / 1000.0) : m_frameIndex;
    metadata.actualRecordedFrames = m_frameIndex;
    metadata.durationMs = durationMs;
    metadata.timestamp = QDateTime::currentDateTime().toString(Qt::ISODate);
    metadata.pixelRatio = getPixelRatio(m_recordArea);
    metadata.devicePixelRatio = getDevicePixelRatio(m_recordArea);
    metadata.screenTrack = m_config.screen;
    metadata.mouseTrack = m_config.mouse;
    metadata.keyboardTrack = m_config.keyboard;
    metadata.systemAudio = m_config.systemAudio;
    metadata.microphoneAudio = m_config.microphone;
    return metadata;
}

void KelRecordTrackManager::saveMetadata(qint64 durationMs)
{
    const KelRecordingMetadata last = metadata(durationMs);
    m_saver.save(last.toJson());
    m_saver.wait(kDiskWait);
    QString error;
    // A disk that is slow or refuses to synchronize may still take the file.
    const bool isSaved = m_saver.settleMetadata() || last.save(m_config.directory, &error);
    if (!isSaved)
        qCCritical(kel::logRecord) << "Failed to save manager metadata:" << error;
    reportFailures({error, m_saver.failures().sync});
}

/// Once, until it succeeds again.
void KelRecordTrackManager::reportFailures(const kel::RecordingSaver::Failures &failures)
{
    if (!failures.metadata.isEmpty() && m_reported.metadata.isEmpty())
        addFailure({}, QStringLiteral("Metadata: cannot write %1: %2")
                           .arg(KelRecordingMetadata::filePath(m_config.directory), failures.metadata));
    if (!failures.sync.isEmpty() && m_reported.sync.isEmpty())
        addFailure({}, QStringLiteral("Cannot bring the recording to the disk: %1").arg(failures.sync));
    m_reported = failures;
}

/// Brings metadata and track files to the same logic frame, so that a crash of the process leaves a recording that
/// plays up to there.
void KelRecordTrackManager::saveCheckpoint()
{
    reportFailures(m_saver.failures()); // of the checkpoint before
    for (KelRecordTrackThreadWrap *thread : qAsConst(m_threads))
        thread->checkpoint(m_frameIndex);
    saveFrameTimes();
    KelRecordingMetadata soFar = metadata(m_clock.recordedMs());
    soFar.complete = false;
    const bool hasAdvanced = std::exchange(m_savedDurationMs, soFar.durationMs) != soFar.durationMs;
    m_saver.save(hasAdvanced ? soFar.toJson() : QByteArray()); // pointer and keys are also recorded during a pause
}

/// Without this file, playback spreads the frames evenly over the duration.
void KelRecordTrackManager::saveFrameTimes()
{
    if (!m_config.screen || m_frameTimes.save() || std::exchange(m_hasReportedFrameTimes, true))
        return;
    addFailure(KelTrackNames::kScreen,
               QStringLiteral("cannot write %1: %2").arg(m_frameTimes.path(), m_frameTimes.errorString()));
}

void KelRecordTrackManager::logStatistics(qint64 durationMs) const
{
    qCWarning(kel::logRecord).noquote() << "[KelRecordTrackManager] ========== 录制完成统计 ==========";
    qCWarning(kel::logRecord).noquote() << QStringLiteral("[KelRecordTrackManager] 逻辑帧数: %1 帧").arg(m_frameIndex);
    qCWarning(kel::logRecord).noquote() << QStringLiteral("[KelRecordTrackManager] 设定FPS: %1").arg(m_config.fps);
    qCWarning(kel::logRecord).noquote() << QStringLiteral("[KelRecordTrackManager] 实际录制时长: %1 ms (%2 秒)")
                                               .arg(durationMs)
                                               .arg(durationMs / 1000.0, 0, 'f', 2);
    for (const KelRecordTrackThreadWrap *thread : m_threads) {
        const int frames = thread->trackFrameCount();
        if (frames > 0) {
            const double fps = durationMs > 0 ? frames * 1000.0 / durationMs : 0.0;
            qCWarning(kel::logRecord).noquote()
                << QStringLiteral("[KelRecordTrackManager] 轨道实际帧数: %1 帧, 实际FPS: %2")
                       .arg(frames)
                       .arg(fps, 0, 'f', 2);
        }
    }
}
