#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QPushButton>

/// Starts and stops a recording. Its text, a glyph, is its state: it shows what a click does. Its object name is the
/// one of the playback button, so that one style serves both. GUI thread.
class KELMOVIE_EXPORT KelRecordButton : public QPushButton
{
    Q_OBJECT

public:
    explicit KelRecordButton(QWidget *parent = nullptr);

    bool isRecording() const;
    /// No signal.
    void setRecording(bool recording);

signals:
    /// The user clicked; the button shows the new state already.
    void sigRecordStateChanged(bool isRecording);
};
