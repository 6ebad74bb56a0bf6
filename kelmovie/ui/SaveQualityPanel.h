#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QWidget>

#include <memory>

class KelPlaybackTrackManager;

/// The quality of an export. For a dock, a dialog or a FloatPanel; reads the settings when it is shown. GUI thread.
class KELMOVIE_EXPORT SaveQualityPanel : public QWidget
{
    Q_OBJECT

public:
    explicit SaveQualityPanel(QWidget *parent = nullptr);
    ~SaveQualityPanel() override;

    /// The recording that is to be exported; null for none. Not owned.
    void setPlaybackManager(KelPlaybackTrackManager *manager);
    /// The part that is to be exported, in ms of recording time; all of it unless both ends are 0 or more.
    void setRange(int startMs, int endMs);

signals:
    /// The user has changed a setting, which is in force already.
    void sigConfigUpdated();

private:
    class Private;
    std::unique_ptr<Private> d;
};
