#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

/// Settings of the keys: which are shown in playback and export, how long, where and how. For a dock, a dialog or a
/// FloatPanel; reads the settings when it is shown. The font is changed in the record alone: a host that keeps it
/// stores its bound fonts at sigConfigUpdated(). GUI thread.
class KELMOVIE_EXPORT KeyboardSettingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit KeyboardSettingsPanel(QWidget *parent = nullptr);

signals:
    /// The user has changed a setting, which is in force and saved already.
    void sigConfigUpdated();
};
