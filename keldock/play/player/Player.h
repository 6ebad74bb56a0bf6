#pragma once

#include <QObject>
#include <QTimer>

class KelPlaybackTrackManager;

/// Plays a loaded recording within a trim range. Seek requests are combined: once per event loop iteration the
/// recording moves to the latest requested position, so that dragging never lags behind. GUI thread.
class Player : public QObject
{
    Q_OBJECT

public:
    /// `manager` is not owned and must outlive the player.
    explicit Player(KelPlaybackTrackManager *manager, QObject *parent = nullptr);

    KelPlaybackTrackManager *manager() const { return m_manager; }

    /// The current frame, or the requested one while a seek is pending.
    int frame() const;
    int positionMs() const { return msOf(frame()); }
    /// Length of the recording, in which positions are.
    int durationMs() const { return m_durationMs; }
    bool isPlaying() const;
    double speed() const;

    int rangeStartMs() const { return m_rangeStartMs; }
    int rangeEndMs() const { return m_rangeEndMs; }
    /// Whether the range is shorter than the recording.
    bool isTrimmed() const;

    /// Carries out a pending seek immediately.
    void settle();

public slots:
    /// Starts over if the end of the range is reached.
    void setPlaying(bool on);
    void togglePlaying() { setPlaying(!isPlaying()); }
    void seekToMs(int ms);
    /// Clamps the frame to the range.
    void seekToFrame(int frame);
    void stepFrames(int count);
    /// Moves by a whole number of frames, so that steps forth and back lead to the same frame.
    void stepMs(int ms);
    void goToStart() { seekToMs(m_rangeStartMs); }
    void goToEnd() { seekToMs(m_rangeEndMs); }

    /// Between the two calls the recording is paused. If it was playing, it resumes afterwards.
    void beginScrub();
    void endScrub();

    /// Moves the current position into the range if necessary.
    void setRange(int startMs, int endMs);
    void trimStartHere();
    void trimEndHere();
    void resetRange() { setRange(0, m_durationMs); }

    void setSpeed(double speed);
    void faster();
    void slower();

signals:
    /// What the recording shows may have changed.
    void frameChanged();
    void positionChanged(int ms);
    void playingChanged(bool isPlaying);
    void rangeChanged(int startMs, int endMs);
    void speedChanged(double speed);

private:
    int msOf(int frame) const;
    int firstFrame() const;
    int lastFrame() const;
    void followFrame(int frame);
    void rewind();
    void applySeek();

    KelPlaybackTrackManager *const m_manager;
    const int m_durationMs;
    QTimer m_seekTimer;
    int m_pendingFrame = -1; ///< -1: none
    int m_rangeStartMs = 0;
    int m_rangeEndMs = 0;
    bool m_resumesAfterScrub = false;
};
