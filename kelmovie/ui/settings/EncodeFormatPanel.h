#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

/// The format of an export and what belongs to it. For a dock, a dialog or a FloatPanel; reads the settings when it is
/// shown. GUI thread.
class KELMOVIE_EXPORT EncodeFormatPanel : public QWidget
{
    Q_OBJECT

public:
    explicit EncodeFormatPanel(QWidget *parent = nullptr);

signals:
    /// The user has changed a setting, which is in force and saved already.
    void sigConfigUpdated();
};
