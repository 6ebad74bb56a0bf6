#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QPushButton>

/// Pauses and resumes a recording. Its text, a single glyph, is both its state and what a click does. GUI thread.
class KELMOVIE_EXPORT KelRecordPauseButton : public QPushButton
{
    Q_OBJECT

public:
    explicit KelRecordPauseButton(QWidget *parent = nullptr);

    /// True unless the text is the pause glyph.
    bool isPause() const;
    /// Sets the state without emitting a signal.
    void setPause(bool pause);

signals:
    /// Emitted on every click, after the button has switched to the new state.
    void sigPauseStateChanged(bool isPause);
};
