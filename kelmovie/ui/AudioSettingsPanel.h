#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

class KelPlaybackTrackManager;

/// Settings of the sound: of what the computer plays and of the microphone. For a dock, a dialog or a FloatPanel; reads
/// the settings when it is shown. GUI thread.
class KELMOVIE_EXPORT AudioSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit AudioSettingsPanel(QWidget *parent = nullptr);
    ~AudioSettingsPanel() override;

    /// The recording that is played; null when recording. Not owned.
    void setPlaybackManager(KelPlaybackTrackManager *manager);

signals:
    /// The user has changed a setting, which is in force and saved already.
    void sigConfigUpdated();

private:
    class Private;
    std::unique_ptr<Private> d;
};
