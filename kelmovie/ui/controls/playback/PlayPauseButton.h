#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QPushButton>

/// Plays and pauses. Its text, a glyph, is its state: it shows what a click does. GUI thread.
class KELMOVIE_EXPORT PlayPauseButton : public QPushButton
{
    Q_OBJECT

public:
    explicit PlayPauseButton(QWidget *parent = nullptr);

    bool isPlay() const;
    /// No signal.
    void setPlay(bool play);

signals:
    /// The user clicked; `play` is the new state.
    void sigPlay(bool play);
};
