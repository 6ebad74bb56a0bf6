#pragma once

#include "playback/tracks/KelPlaybackTrack.h"
#include "recording/RecordingTimeline.h"

#include <QColor>
#include <QRect>

#include <optional>

/// The layer that shows the position in the recording: a box with elapsed and total time in the bottom-right corner, or
/// a bar along the bottom edge. It has no files.
class KelPlaybackCountdownTrack : public KelPlaybackTrack
{
    Q_OBJECT

public:
    enum DisplayMode { TimeBox = 0, ProgressBar = 1 };

    KelPlaybackCountdownTrack(const QString &directory, KelPlaybackTrackManager *manager);

    void seekToFrame(int frame) override;
    bool moveToFrame(int frame) override;
    void paint(QPainter *painter) override;
    int nextKeyFrame() override;
    bool isVisible() override;

    void setEnabled(bool on) { m_isEnabled = on; }
    /// Whether playback is running; it does not affect painting.
    void setPlaying(bool on) { m_isPlaying = on; }
    bool isPlaying() const { return m_isPlaying; }
    /// Logic frames a second.
    void setFps(int fps) { m_fps = fps; }
    /// Scale factor of the time box's text and corners, for desktops with larger text.
    void setScale(double scale) { m_scale = scale; }
    /// The frame, in logical pixels; only its size is used.
    void setArea(const QRect &area) { m_area = area; }
    void setTotalFrames(int frames) { m_totalFrames = frames; }
    /// The playback speed: the time box shows wall-clock time.
    void setSpeed(double speed) { m_speed = speed; }

    /// The time box shows the position within a range of the recording, or within all of it.
    void setRange(const std::optional<kel::RecordingTimeline::Range> &range) { m_range = range; }

    /// A mode other than those of DisplayMode draws nothing.
    void setDisplayMode(int mode) { m_displayMode = mode; }
    void setBarColors(const QColor &played, const QColor &background);
    /// Logical pixels.
    void setBarHeight(int height) { m_barHeight = height; }
    void setFontSize(int size) { m_fontSize = size; }
    /// Corner radius of bar and box in logical pixels; with 0 the bar is square and the box has its default radius.
    void setCornerRadius(int radius) { m_cornerRadius = radius; }
    /// Minimum interval between two movements of the bar, in ms of the recording; 0: every frame.
    void setBarInterval(int ms) { m_barIntervalMs = ms; }

private:
    void paintBar(QPainter &painter) const;
    void paintTimeBox(QPainter &painter) const;
    int playedWidth() const;
    double playedShare() const;
    double elapsedSeconds() const;
    double totalSeconds() const;
    QString timeText() const;
    QString visibleState() const;

    bool m_isEnabled = true;
    bool m_isPlaying = false;
    int m_currentFrame = 0;
    int m_totalFrames = 0;
    int m_fps = 25;
    double m_speed = 1.0;
    QRect m_area;
    std::optional<kel::RecordingTimeline::Range> m_range;
    int m_displayMode = TimeBox;
    QColor m_barColor{0, 122, 255};
    QColor m_barBackground{200, 200, 200};
    int m_barHeight = 6;
    int m_fontSize = 16;
    int m_cornerRadius = 0;
    int m_barIntervalMs = 0;
    double m_scale = 1.0;
};
