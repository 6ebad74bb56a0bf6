#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QColor>
#include <QWidget>

#include <memory>

/// The timeline of the playback controls: a bar for the whole recording, within it the range that is played and
/// exported, the part already played and, while the bar is hovered or focused, a knob at the playback position. An
/// editable range has a handle at each end. All times are in ms. GUI thread.
///
/// Keys: Left and Right move the position by one second, with Ctrl by 100 ms, Page Up and Page Down by ten seconds,
/// Home and End to the ends of the range. I and O set the start and the end of an editable range to the position.
class KELMOVIE_EXPORT PlayProgressBar : public QWidget
{
    Q_OBJECT
    /// The height of the bar in logical pixels.
    Q_PROPERTY(int barHeight READ barHeight WRITE setBarHeight)
    /// The accent color.
    Q_PROPERTY(QColor playedColor READ playedColor WRITE setPlayedColor)

public:
    /// `rangeEditable` adds the handles.
    explicit PlayProgressBar(bool rangeEditable, QWidget *parent = nullptr);
    ~PlayProgressBar() override;

    /// Length of the recording. A new length resets the range to the whole recording and the position to 0.
    void setDuration(int ms);
    /// Moves the position into the range. Expects 0 <= start <= end <= duration.
    void setPlayRange(int start, int end);
    /// Takes effect on release while the user drags the position.
    void setPlayTime(int ms);

    /// In logical pixels, initially 20. The widget is 1.5 times as high, rounded up.
    void setBarHeight(int height);
    int barHeight() const; ///< The height of the bar
    /// The accent color, initially Qt::red: of the knob, the handles and, lightened, the played part.
    void setPlayedColor(const QColor &color);
    QColor playedColor() const; ///< The accent color

    /// Whether the user is dragging the position or a handle.
    bool isDragging() const;
    int playTimeMs() const;   ///< The position
    int rangeStartMs() const; ///< The start of the range
    int rangeEndMs() const;   ///< The end of the range

    /// Moves the position like a click there, signals included, but within the range.
    void seekTo(int ms);

    QSize sizeHint() const override;

signals:
    /// The user starts, continues and ends moving the position.
    void sigPlayTimePress();
    void sigPlayTimeChanged(int playTimeMs); ///< The position moved
    void sigPlayTimeRelease();               ///< The user released the position
    /// The user starts, continues and ends moving an end of the range. `type` is 0 for the start, 1 for the end.
    void sigRangeAdjustStart(int type);
    void sigPlayRangeChanged(int start, int end, int type); ///< The range changed
    void sigRangeAdjustEnd(int type);                       ///< The user released an end of the range

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    class Private;
    std::unique_ptr<Private> d;
};
