#pragma once

#include "playback/PlaybackClock.h"
#include "playback/PlaybackTracks.h"
#include "playback/tracks/KelPlaybackDependencies.h"
#include "recording/KelRecordingMetadata.h"

#include <KelMovie/KelPlaybackTrackManager.h>

#include <QString>
#include <QTimer>

#include <chrono>
#include <optional>

class KelPlaybackVoiceTrack;
class QPainter;

namespace kel
{

/// What KelPlaybackTrackManager does: state, clock, current frame and tracks of one loaded recording, and in addition
/// what an export needs. Functions that the manager has too are described there. GUI thread only.
class PlaybackEngine
{
public:
    using State = KelPlaybackTrackManager::State;

    /// `manager` emits the signals; it is not owned and must outlive this.
    PlaybackEngine(const QString &recordDir, bool preferHardwareDecode, const KelPlaybackRules &rules,
                   const KelPlaybackDependencies &dependencies, KelPlaybackTrackManager *manager);
    ~PlaybackEngine();

    QString recordDir() const { return m_recordDir; }
    const KelRecordingMetadata &metadata() const { return m_metadata; }
    const KelPlaybackRules &rules() const { return m_rules; }
    const PlaybackTracks &tracks() const { return m_tracks; }
    bool prefersHardwareDecode() const { return m_prefersHardwareDecode; }
    QStringList soundProblems() const { return m_tracks.soundProblems(); }
    /// Null when no sound was recorded.
    KelPlaybackVoiceTrack *voiceTrack() const { return m_tracks.voice(); }

    State state() const { return m_state; }
    int currentFrame() const { return m_currentFrame; }
    double speed() const { return m_clock.speed(); }
    qint64 durationMs() const;
    qint64 lastPlayDurationMs() const { return m_lastPlayDurationMs; }

    void play();
    void pause();
    void stop();
    void setSpeed(double speed);
    void seek(int frame, bool force);
    void paint(QPainter *painter);
    void updateSettings();
    void setTrimRange(qint64 startMs, qint64 endMs);

    /// Moves all tracks but the sound and emits nothing.
    void setFrameSilently(int frame);
    void setFrameAsPlayed(int frame);
    /// Starts to decode the video frame of `frame` in the background. Once waitForPrefetch() returns true, a
    /// setFrameSilently() to it does not block.
    void prefetch(int frame);
    /// Whether nothing is being decoded in the background, after waiting for up to `limit`.
    bool waitForPrefetch(std::chrono::milliseconds limit) const;
    /// Number of seeks so far whose video frame could not be decoded, so that the previous one stayed.
    int failedFrames() const;

    /// Set by an export while it works. A cancelled export leaves it set.
    void setExporting(bool on) { m_isExporting = on; }
    bool isExporting() const { return m_isExporting; }
    /// From now on the progress overlay shows the time of an export at `speed`, within `range` or the whole recording.
    /// Ends all mouse effects. Keeps the present video frame, so that endExport() need not decode it.
    void beginExport(double speed, const std::optional<RecordingTimeline::Range> &range);
    /// Undoes beginExport() and seeks to `frame`.
    void endExport(int frame);

private:
    bool holds(int frame) const { return frame >= 0 && frame < m_tracks.totalFrames(); }
    bool isJump(int frame) const;
    double audioMs(int frame) const;
    void restartClock();
    void playSound();
    void tick();
    void endPlay();

    KelPlaybackTrackManager *const m_manager;
    const KelPlaybackDependencies m_dependencies;
    QTimer m_timer;
    State m_state = State::Stopped;
    const QString m_recordDir;
    const KelRecordingMetadata m_metadata;
    const KelPlaybackRules m_rules;
    const bool m_prefersHardwareDecode;
    PlaybackTracks m_tracks;
    PlaybackClock m_clock;
    std::optional<RecordingTimeline::Range> m_trimRange;
    int m_currentFrame = 0;
    bool m_isExporting = false;
    qint64 m_lastPlayDurationMs = 0;
};

} // namespace kel
