#pragma once

#include "playback/tracks/KelPlaybackTrack.h"

#include <QColor>
#include <QRect>

/// The layer that tells where in the recording the picture is: a box with elapsed and total time in the bottom-right
/// corner, or a bar along the bottom edge. It has no files of its own.
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
    /// Whether playback runs; it does not change the picture.
    void setPlaying(bool on) { m_isPlaying = on; }
    bool isPlaying() const { return m_isPlaying; }
    /// Logic frames a second.
    void setFps(int fps) { m_fps = fps; }
    /// Enlarges the time box's text and corners, for a desktop with larger text.
    void setScale(double scale) { m_scale = scale; }
    /// The picture, in logical pixels; only its size counts.
    void setArea(const QRect &area) { m_area = area; }
    void setTotalFrames(int frames) { m_totalFrames = frames; }
    /// The playback speed: the time box tells wall-clock time.
    void setSpeed(double speed) { m_speed = speed; }

    /// The time box tells the position within logic frames `start` to `end`.
    void setRange(int start, int end);
    void clearRange() { m_isRangeMode = false; }

    /// A mode other than those of DisplayMode draws nothing.
    void setDisplayMode(int mode) { m_displayMode = mode; }
    void setBarColors(const QColor &played, const QColor &background);
    /// Logical pixels.
    void setBarHeight(int height) { m_barHeight = height; }
    void setFontSize(int size) { m_fontSize = size; }
    /// Corners of bar and box in logical pixels; 0 leaves the bar square and gives the box its own.
    void setCornerRadius(int radius) { m_cornerRadius = radius; }
    /// The bar moves on at most once in so many ms of the recording; 0 with every frame.
    void setBarStep(int ms) { m_barStepMs = ms; }

private:
    void paintBar(QPainter &painter) const;
    void paintTimeBox(QPainter &painter) const;
    int playedWidth() const;
    QString timeText() const;
    QString look() const;

    bool m_isEnabled = true;
    bool m_isPlaying = false;
    int m_currentFrame = 0;
    int m_totalFrames = 0;
    int m_fps = 25;
    double m_speed = 1.0;
    QRect m_area;
    bool m_isRangeMode = false;
    int m_rangeStart = 0;
    int m_rangeEnd = 0;
    int m_displayMode = TimeBox;
    QColor m_barColor{0, 122, 255};
    QColor m_barBackground{200, 200, 200};
    int m_barHeight = 6;
    int m_fontSize = 16;
    int m_cornerRadius = 0;
    int m_barStepMs = 0;
    double m_scale = 1.0;
};
