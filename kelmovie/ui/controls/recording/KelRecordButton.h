#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QPushButton>

/// Starts and stops a recording. Its text, a single glyph, is both its state and what a click does. Its object name is
/// "PlayPauseButton", like that of the playback button, so that one style applies to both. GUI thread.
class KELMOVIE_EXPORT KelRecordButton : public QPushButton
{
    Q_OBJECT

public:
    explicit KelRecordButton(QWidget *parent = nullptr);

    /// True unless the text is the record glyph.
    bool isRecording() const;
    /// Sets the state without emitting a signal.
    void setRecording(bool recording);

signals:
    /// Emitted on every click, after the button has switched to the new state.
    void sigRecordStateChanged(bool isRecording);
};
