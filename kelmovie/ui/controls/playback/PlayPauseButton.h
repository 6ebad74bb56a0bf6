#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QPushButton>

/// Starts and pauses playback. Its text, a single glyph, is both its state and what a click does. GUI thread.
class KELMOVIE_EXPORT PlayPauseButton : public QPushButton
{
    Q_OBJECT

public:
    explicit PlayPauseButton(QWidget *parent = nullptr);

    /// True exactly while the text is the pause glyph.
    bool isPlay() const;
    /// Sets the state without emitting a signal.
    void setPlay(bool play);

signals:
    /// Emitted on every click, after the button has switched to the new state.
    void sigPlay(bool play);
};
