#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

class PlayProgressBar;

/// The control bar below the video: the timeline and, under it, the play/pause button and the time. It does not control
/// playback itself: a host connects its signals to the playback manager and feeds it the state. GUI thread.
class KELMOVIE_EXPORT KelPlayCtrlWidget : public QWidget
{
    Q_OBJECT

public:
    explicit KelPlayCtrlWidget(QWidget *parent = nullptr);
    ~KelPlayCtrlWidget() override;

    /// Length of the recording in ms.
    void setDuration(qint64 ms);
    /// Playback position in ms.
    void setPlayTime(qint64 ms);
    /// Switches the button without emitting a signal.
    void setPlayButtonState(bool isPlaying);

    /// The timeline, for signals beyond those below. Owned by this widget, never null.
    PlayProgressBar *progressBar() const;
    /// Appends a control to the right end of the lower row and takes ownership of it.
    void addControl(QWidget *control);

signals:
    /// The user clicked play (true) or pause (false).
    void sigPlayPause(bool isPlaying);
    /// The user moved the playback position. In ms, despite the parameter name.
    void sigPlayTimeChanged(int playTimeSecond);
    /// The user moved an end of the range. In ms. `type` is 0 for the start, 1 for the end.
    void sigPlayRangeChanged(int start, int end, int type);

private:
    void updateQSS();
    void updateTime();

    class Private;
    std::unique_ptr<Private> d;
};
