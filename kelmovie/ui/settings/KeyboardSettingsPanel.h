#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

namespace kel
{
class SettingsForm;
} // namespace kel

/// Settings of the keys: which are shown in playback and export, how long, where and how. For a dock, a dialog or a
/// FloatPanel; reads the settings when it is shown. The font is changed in the record alone: a host that keeps it
/// stores its bound fonts at sigConfigUpdated(). GUI thread.
class KELMOVIE_EXPORT KeyboardSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit KeyboardSettingsPanel(QWidget *parent = nullptr);

    /// Whether the panel has the setting of the next recording, too, as it has at first.
    void setRecordingShown(bool shown);

signals:
    /// The user has changed a setting, which is in force and saved already.
    void sigConfigUpdated();

private:
    kel::SettingsForm *const m_form;
};
