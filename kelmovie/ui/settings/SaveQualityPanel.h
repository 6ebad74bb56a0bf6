#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QSize>
#include <QWidget>

#include <memory>

class KelPlaybackTrackManager;

/// The quality of an export, and about how large the file becomes with it. The estimate is made in the background while
/// the panel is seen, and anew when the settings of the export change. For a dock, a dialog or a FloatPanel; reads the
/// settings when it is shown. GUI thread.
class KELMOVIE_EXPORT SaveQualityPanel : public QWidget
{
    Q_OBJECT

public:
    explicit SaveQualityPanel(QWidget *parent = nullptr);
    ~SaveQualityPanel() override;

    /// The recording that is to be exported, at its playback speed; null for none, without an estimate. Not owned.
    void setPlaybackManager(KelPlaybackTrackManager *manager);
    /// The part that is to be exported, in ms of recording time; all of it unless both ends are 0 or more.
    void setRange(int startMs, int endMs);
    /// Frames a second of the file, 25 at first.
    void setFrameRate(int fps);
    /// Pixels of the file; as many as were recorded when empty, as at first.
    void setPictureSize(const QSize &size);

signals:
    /// The user has changed a setting, which is in force already.
    void sigConfigUpdated();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    class Private;
    std::unique_ptr<Private> d;
};
