#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QColor>
#include <QWidget>

#include <memory>

/// The timeline of the playback controls: a bar for the whole recording, in it the range that is played and exported,
/// the part already played, a knob at the play position while the pointer is over it, and, when the range may be
/// edited, two handles at its ends. It knows milliseconds only and reports what the user does. GUI thread.
///
/// Keys: Left and Right move the play position by a second, with Ctrl by a tenth, Page Up and Page Down by ten seconds,
/// Home and End to the ends of the range. I and O put the start and the end of an editable range at the play position.
class KELMOVIE_EXPORT PlayProgressBar : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int barHeight READ barHeight WRITE setBarHeight)
    Q_PROPERTY(QColor playedColor READ playedColor WRITE setPlayedColor)

public:
    explicit PlayProgressBar(bool rangeEditable, QWidget *parent = nullptr);
    ~PlayProgressBar() override;

    /// A length in ms. Another one than before resets the range to the whole recording and the position to 0.
    void setDuration(int ms);
    /// In ms. The play position is moved into the range.
    void setPlayRange(int start, int end);
    /// In ms. While the user drags the position, the new one waits for the release.
    void setPlayTime(int ms);

    /// Logical pixels; the widget is half as high again.
    void setBarHeight(int height);
    int barHeight() const;
    void setPlayedColor(const QColor &color);
    QColor playedColor() const;

    /// The user holds the position or a handle.
    bool isDragging() const;
    int playTimeMs() const;
    int rangeStartMs() const;
    int rangeEndMs() const;

    /// As if the user clicked there, within the range. In ms.
    void seekTo(int ms);

    QSize sizeHint() const override;

signals:
    void sigPlayTimePress();
    void sigPlayTimeChanged(int playTimeMs);
    void sigPlayTimeRelease();
    /// 0: the handle of the start, 1: the one of the end. So are the types below.
    void sigRangeAdjustStart(int type);
    void sigPlayRangeChanged(int start, int end, int type);
    void sigRangeAdjustEnd(int type);

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
