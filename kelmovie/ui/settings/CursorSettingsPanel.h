#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

/// Settings of pointer, clicks and wheel in playback and export. For a dock, a dialog or a FloatPanel; reads the
/// settings whenever it is shown. GUI thread.
class KELMOVIE_EXPORT CursorSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit CursorSettingsPanel(QWidget *parent = nullptr);
    ~CursorSettingsPanel() override;

    /// Shows or hides the setting for the next recording. Shown initially.
    void setRecordingShown(bool shown);

signals:
    /// The user changed a setting. It is already in gKelMovieConfig and saved.
    void sigConfigUpdated();

private:
    class Private;
    std::unique_ptr<Private> d;
};
