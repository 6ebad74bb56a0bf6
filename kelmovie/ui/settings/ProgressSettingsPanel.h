#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

/// Settings of the time or progress bar shown over the video in playback and export. For a dock, a dialog or a
/// FloatPanel; reads the settings whenever it is shown. GUI thread.
class KELMOVIE_EXPORT ProgressSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ProgressSettingsPanel(QWidget *parent = nullptr);

signals:
    /// The user changed a setting. It is already in gKelMovieConfig and saved.
    void sigConfigUpdated();
};
