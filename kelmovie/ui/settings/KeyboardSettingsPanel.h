#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

/// Settings of the keys in playback and export: which are shown, how long, where and how. For a dock, a dialog or a
/// FloatPanel; reads the settings whenever it is shown. The font is changed in gKelMovieConfig only: a host that wants
/// to keep it saves its bound fonts on sigConfigUpdated(). GUI thread.
class KELMOVIE_EXPORT KeyboardSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit KeyboardSettingsPanel(QWidget *parent = nullptr);
    ~KeyboardSettingsPanel() override;

    /// Shows or hides the setting for the next recording. Shown initially.
    void setRecordingShown(bool shown);

signals:
    /// The user changed a setting. It is already in gKelMovieConfig and, except for the font, saved.
    void sigConfigUpdated();

private:
    class Private;
    std::unique_ptr<Private> d;
};
