#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QPushButton>

/// Pauses and resumes a recording. Its text, a glyph, is its state: it shows what a click does. GUI thread.
class KELMOVIE_EXPORT KelRecordPauseButton : public QPushButton
{
    Q_OBJECT

public:
    explicit KelRecordPauseButton(QWidget *parent = nullptr);

    bool isPause() const;
    /// No signal.
    void setPause(bool pause);

signals:
    /// The user clicked; the button shows the new state already.
    void sigPauseStateChanged(bool isPause);
};
