#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

class KelPlaybackTrackManager;

/// Settings of the sound: of what the computer plays and of the microphone. It shows how loud both are, and warns when
/// a device is missing or silent; devices are listened to only while the panel is seen. For a dock, a dialog or a
/// FloatPanel; reads the settings when it is shown. GUI thread.
class KELMOVIE_EXPORT AudioSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit AudioSettingsPanel(QWidget *parent = nullptr);
    ~AudioSettingsPanel() override;

    /// Shows how loud this recording's sounds are played; null, as at first: what the devices hear. Not owned.
    void setPlaybackManager(KelPlaybackTrackManager *manager);

    /// While a recording runs, the panel says that what is recorded changes with the next one only, unless the user
    /// does not want to be told (the setting recordDontShowRecordingWarning).
    void setRecording(bool recording);

    /// Whether the panel has the settings of the next recording, too, as it has at first.
    void setRecordingShown(bool shown);

signals:
    /// The user has changed a setting, which is in force and saved already.
    void sigConfigUpdated();

private:
    class Private;
    std::unique_ptr<Private> d;
};
