#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

/// Settings of the time shown over the picture in playback and export. For a dock, a dialog or a FloatPanel; reads
/// the settings when it is shown. GUI thread.
class KELMOVIE_EXPORT ProgressSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ProgressSettingsPanel(QWidget *parent = nullptr);

signals:
    /// The user has changed a setting, which is in force and saved already.
    void sigConfigUpdated();
};
