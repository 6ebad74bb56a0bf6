#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

namespace kel
{
class SettingsForm;
} // namespace kel

/// Settings of the pointer: what of the mouse is shown in playback and export, and how. For a dock, a dialog or a
/// FloatPanel; reads the settings when it is shown. GUI thread.
class KELMOVIE_EXPORT CursorSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit CursorSettingsPanel(QWidget *parent = nullptr);

    /// Whether the panel has the setting of the next recording, too, as it has at first.
    void setRecordingShown(bool shown);

signals:
    /// The user has changed a setting, which is in force and saved already.
    void sigConfigUpdated();

private:
    kel::SettingsForm *const m_form;
};
