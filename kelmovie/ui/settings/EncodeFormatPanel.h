#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

/// Export format, animation loops and whether to exit recording mode after an export. For a dock, a dialog or a
/// FloatPanel; reads the settings whenever it is shown. GUI thread.
class KELMOVIE_EXPORT EncodeFormatPanel : public QWidget
{
    Q_OBJECT

public:
    explicit EncodeFormatPanel(QWidget *parent = nullptr);

signals:
    /// The user changed a setting. It is already in gKelMovieConfig and saved.
    void sigConfigUpdated();
};
