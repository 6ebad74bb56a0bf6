#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

class KelPlaybackTrackManager;

/// Settings of system audio and microphone, with a level meter for each and a warning when a device is missing or
/// silent. Devices are listened to only while the panel is visible. For a dock, a dialog or a FloatPanel; reads the
/// settings whenever it is shown. GUI thread.
class KELMOVIE_EXPORT AudioSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit AudioSettingsPanel(QWidget *parent = nullptr);
    ~AudioSettingsPanel() override;

    /// The meters show the playback levels of this manager or, if null (initially), what the devices capture. Not
    /// owned; may be destroyed before the panel.
    void setPlaybackManager(KelPlaybackTrackManager *manager);

    /// While recording, a note says that changes apply to the next recording only. The user can turn it off for good
    /// (setting recordDontShowRecordingWarning).
    void setRecording(bool recording);

    /// Shows or hides the settings for the next recording. Shown initially.
    void setRecordingShown(bool shown);

signals:
    /// The user changed a setting. It is already in gKelMovieConfig and saved.
    void sigConfigUpdated();

private:
    class Private;
    std::unique_ptr<Private> d;
};
