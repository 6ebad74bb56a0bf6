#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

class PlayProgressBar;

/// The strip under a replayed picture: the timeline, and below it play/pause and the time. It reports what the user
/// does and shows what it is told. GUI thread.
class KELMOVIE_EXPORT KelPlayCtrlWidget : public QWidget
{
    Q_OBJECT

public:
    explicit KelPlayCtrlWidget(QWidget *parent = nullptr);
    ~KelPlayCtrlWidget() override;

    /// In ms.
    void setDuration(qint64 ms);
    /// In ms.
    void setPlayTime(qint64 ms);
    /// No signal.
    void setPlayButtonState(bool isPlaying);

    /// The timeline, for what it tells beyond the signals below. Owned by the strip.
    PlayProgressBar *progressBar() const;
    /// Puts a control of the host at the right end of the lower row; the strip becomes its parent.
    void addControl(QWidget *control);

signals:
    void sigPlayPause(bool isPlaying);
    /// In ms, whatever the name says.
    void sigPlayTimeChanged(int playTimeSecond);
    /// In ms. `type` is 0 when the start is dragged, 1 when the end is.
    void sigPlayRangeChanged(int start, int end, int type);

private:
    void updateQSS();
    void updateTime();

    class Private;
    std::unique_ptr<Private> d;
};
