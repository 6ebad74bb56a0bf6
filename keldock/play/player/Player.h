#pragma once

#include "play/player/RecordingClock.h"

#include <QObject>
#include <QTimer>

class KelPlaybackTrackManager;

/// Plays a loaded recording within a trim range. Whatever asks for a place on the timeline, and however often: the
/// recording is moved once per turn of the event loop, to the latest place, so that dragging never lags behind.
class Player : public QObject
{
    Q_OBJECT

public:
    /// `manager` is not owned and must outlive the player.
    explicit Player(KelPlaybackTrackManager *manager, QObject *parent = nullptr);

    KelPlaybackTrackManager *manager() const { return m_manager; }
    const RecordingClock &clock() const { return m_clock; }

    /// Where the recording is, or will be as soon as the event loop turns.
    int frame() const;
    int positionMs() const { return m_clock.msOf(frame()); }
    bool isPlaying() const;
    double speed() const;

    int rangeStartMs() const { return m_rangeStartMs; }
    int rangeEndMs() const { return m_rangeEndMs; }
    /// Whether the range is less than the whole recording.
    bool isTrimmed() const;

    /// Moves to where the last request leads, now.
    void settle();

public slots:
    /// At the end of the range, playing begins anew.
    void setPlaying(bool on);
    void togglePlaying() { setPlaying(!isPlaying()); }
    void seekToMs(int ms);
    /// The frame is moved into the range.
    void seekToFrame(int frame);
    void stepFrames(int count);
    /// By whole frames, so that back and forth leads to the same one.
    void stepMs(int ms);
    void goToStart() { seekToMs(m_rangeStartMs); }
    void goToEnd() { seekToMs(m_rangeEndMs); }

    /// Between the two, the position follows the pointer and nothing plays.
    void beginScrub();
    void endScrub();

    /// A position outside of it is moved into it.
    void setRange(int startMs, int endMs);
    void trimStartHere();
    void trimEndHere();
    void resetRange() { setRange(0, m_clock.durationMs()); }

    void setSpeed(double speed);
    void faster();
    void slower();

signals:
    /// The picture may be another one.
    void pictureChanged();
    void positionChanged(int ms);
    void playingChanged(bool isPlaying);
    void rangeChanged(int startMs, int endMs);
    void speedChanged(double speed);

private:
    int firstFrame() const { return m_clock.frameAt(m_rangeStartMs); }
    int lastFrame() const { return m_clock.frameAt(m_rangeEndMs); }
    void followFrame(int frame);
    void rewind();
    void applySeek();

    KelPlaybackTrackManager *const m_manager;
    const RecordingClock m_clock;
    QTimer m_seekTimer;
    int m_wantedFrame = -1; ///< -1: none
    int m_rangeStartMs = 0;
    int m_rangeEndMs = 0;
    bool m_resumesAfterScrub = false;
};
