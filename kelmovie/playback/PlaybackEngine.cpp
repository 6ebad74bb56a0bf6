#include "playback/PlaybackEngine.h"

#include "playback/keys/KelPlaybackKeyboardTrack.h"
#include "playback/mouse/KelPlaybackMouseTrack.h"
#include "playback/tracks/KelPlaybackCountdownTrack.h"
#include "playback/tracks/KelPlaybackScreenTrack.h"
#include "playback/tracks/KelPlaybackVoiceTrack.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace kel
{

namespace
{

constexpr double kMinSpeed = 0.1;
constexpr double kMaxSpeed = 16.0;
constexpr double kSkippingSpeed = 1.5;
constexpr int kJumpFrames = 2;

// Above kSkippingSpeed only every n-th frame change is decoded. The count is shared by all managers and never reset.
unsigned frameChanges = 0;

/// Keeps the defaults where the file cannot be read.
KelRecordingMetadata loadMetadata(const QString &dir)
{
    KelRecordingMetadata metadata;
    KelRecordingMetadata::load(dir, &metadata);
    return metadata;
}

} // namespace

PlaybackEngine::PlaybackEngine(const QString &recordDir, bool preferHardwareDecode, const KelPlaybackRules &rules,
                               const KelPlaybackDependencies &dependencies, KelPlaybackTrackManager *manager)
    : m_manager(manager)
    , m_dependencies(dependencies)
    , m_timer(manager)
    , m_recordDir(recordDir)
    , m_metadata(loadMetadata(recordDir))
    , m_rules(rules)
    , m_prefersHardwareDecode(preferHardwareDecode)
    , m_tracks(recordDir, m_metadata, preferHardwareDecode, m_rules, m_dependencies, manager)
    , m_clock(m_tracks.timeline())
{
    m_timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&m_timer, &QTimer::timeout, manager, [this] { tick(); });
    if (voiceTrack())
        QObject::connect(voiceTrack(), &KelPlaybackVoiceTrack::deviceFailed, manager,
                         &KelPlaybackTrackManager::sigSoundDeviceFailed);
}

PlaybackEngine::~PlaybackEngine()
{
    // Closing a sound device processes events: no tick may arrive while the tracks are being destroyed.
    m_timer.stop();
}

bool PlaybackEngine::isJump(int frame) const
{
    return std::abs(frame - m_currentFrame) > kJumpFrames;
}

/// Position of a frame in the sound, which was recorded in real time.
double PlaybackEngine::audioMs(int frame) const
{
    return m_tracks.timeline().isMeasured() ? m_tracks.timeline().msOf(frame) : 0.0;
}

void PlaybackEngine::restartClock()
{
    m_clock.restart(m_dependencies.nowMs(), m_currentFrame);
}

void PlaybackEngine::playSound()
{
    if (voiceTrack())
        voiceTrack()->play(audioMs(m_currentFrame), m_clock.speed() * m_tracks.timeline().playbackRate());
}

void PlaybackEngine::tick()
{
    if (m_state != State::Playing)
        return;
    const qint64 now = m_dependencies.nowMs();
    const int previous = m_currentFrame;
    m_currentFrame = m_clock.frameAt(now);
    const bool changed = m_currentFrame != previous;
    if (changed)
        emit m_manager->sigFrameChanged(m_currentFrame);
    if (m_state != State::Playing)
        return; // the receiver paused or stopped
    if (m_currentFrame >= m_tracks.totalFrames() - 1 && m_clock.isOver(now)) {
        m_lastPlayDurationMs = m_clock.elapsedMs(now);
        endPlay();
        return;
    }
    if (changed) {
        ++frameChanges;
        const unsigned step = m_clock.speed() > kSkippingSpeed ? unsigned(m_clock.speed()) : 1U;
        if (frameChanges % step == 0)
            seek(m_currentFrame, false);
    }
    if (voiceTrack() && m_tracks.timeline().isMeasured())
        voiceTrack()->synchronize(m_clock.recordingMsAt(m_dependencies.nowMs()));
}

void PlaybackEngine::endPlay()
{
    m_timer.stop();
    m_state = State::Stopped;
    m_tracks.countdown()->setPlaying(false);
    if (voiceTrack())
        voiceTrack()->stop();
    m_tracks.resetEffects();
    m_currentFrame = 0;
    emit m_manager->sigFrameChanged(0);
    if (m_tracks.keyboard())
        m_tracks.keyboard()->resetHistory();
    m_tracks.noteChange();
    emit m_manager->sigPlaybackStopped();
}

void PlaybackEngine::play()
{
    if (m_state == State::Playing)
        return;
    m_tracks.applySettings();
    // After the end of playback the tracks still show the last frame.
    if (m_state == State::Stopped)
        m_tracks.moveTo(m_currentFrame);
    m_state = State::Playing;
    m_tracks.countdown()->setPlaying(true);
    restartClock();
    playSound();
    // Twice per frame, so that a frame is at most half a frame late.
    m_timer.start(std::max(1, 500 / m_metadata.fps));
    emit m_manager->sigPlaybackStarted();
}

void PlaybackEngine::pause()
{
    if (m_state != State::Playing)
        return;
    m_timer.stop();
    m_state = State::Paused;
    m_tracks.countdown()->setPlaying(false);
    if (voiceTrack())
        voiceTrack()->pause();
    m_tracks.resetEffects();
    emit m_manager->sigPlaybackPaused();
}

void PlaybackEngine::stop()
{
    if (m_state != State::Stopped)
        endPlay();
}

void PlaybackEngine::setSpeed(double speed)
{
    if (!std::isfinite(speed))
        return;
    m_clock.setSpeed(std::clamp(speed, kMinSpeed, kMaxSpeed));
    m_tracks.countdown()->setSpeed(m_clock.speed());
    m_tracks.noteChange();
    restartClock();
    if (m_state == State::Playing)
        playSound();
    emit m_manager->sigPlaybackSpeedChanged(m_clock.speed());
}

void PlaybackEngine::seek(int frame, bool force)
{
    if (!holds(frame))
        return;
    const bool isMove = force || isJump(frame);
    m_currentFrame = frame;
    if (isMove && m_state == State::Playing)
        restartClock();
    m_tracks.moveTo(frame);
    if (voiceTrack() && (isMove || m_state == State::Paused))
        voiceTrack()->seekToMs(qint64(audioMs(frame)));
    emit m_manager->sigFrameChanged(frame);
}

void PlaybackEngine::paint(QPainter *painter)
{
    if (painter)
        m_tracks.paint(painter);
}

void PlaybackEngine::updateSettings()
{
    m_tracks.applySettings();
    emit m_manager->sigFrameChanged(m_currentFrame);
}

void PlaybackEngine::setFrameSilently(int frame)
{
    if (!holds(frame))
        return;
    m_currentFrame = frame;
    m_tracks.moveTo(frame);
}

void PlaybackEngine::setFrameAsPlayed(int frame)
{
    if (m_tracks.mouse() && holds(frame))
        m_tracks.mouse()->playEffectsBefore(frame);
    setFrameSilently(frame);
}

void PlaybackEngine::prefetch(int frame)
{
    if (m_tracks.screen() && holds(frame))
        m_tracks.screen()->prefetch(frame);
}

bool PlaybackEngine::waitForPrefetch(std::chrono::milliseconds limit) const
{
    return !m_tracks.screen() || m_tracks.screen()->waitForPrefetch(limit);
}

int PlaybackEngine::failedFrames() const
{
    return m_tracks.screen() ? m_tracks.screen()->failedFrames() : 0;
}

qint64 PlaybackEngine::durationMs() const
{
    return m_tracks.timeline().isMeasured() ? m_tracks.timeline().durationMs() : 0;
}

void PlaybackEngine::setTrimRange(qint64 startMs, qint64 endMs)
{
    if (!m_rules.timeFollowsRecording)
        return;
    m_trimRange.reset();
    if (startMs >= 0 && endMs >= 0)
        m_trimRange = m_tracks.timeline().rangeOf(startMs, endMs);
    m_tracks.countdown()->setRange(m_trimRange);
    m_tracks.noteChange();
    emit m_manager->sigFrameChanged(m_currentFrame);
}

void PlaybackEngine::beginExport(double speed, const std::optional<RecordingTimeline::Range> &range)
{
    m_tracks.countdown()->setSpeed(speed);
    m_tracks.countdown()->setRange(range);
    if (m_tracks.screen())
        m_tracks.screen()->keepFrame();
    m_tracks.resetEffects();
}

void PlaybackEngine::endExport(int frame)
{
    m_tracks.countdown()->setRange(m_trimRange);
    m_tracks.countdown()->setSpeed(m_clock.speed());
    m_tracks.resetEffects();
    seek(frame, false);
    if (m_tracks.screen())
        m_tracks.screen()->dropKeptFrame();
}

} // namespace kel
