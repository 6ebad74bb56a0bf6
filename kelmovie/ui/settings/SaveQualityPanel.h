#pragma once

#include <KelMovie/KelMovieGlobal.h>

#include <QSize>
#include <QWidget>

#include <memory>

class KelPlaybackTrackManager;

/// The quality of an export and an estimate of the resulting file size. The estimate runs in the background while the
/// panel is visible and restarts when the export settings change. For a dock, a dialog or a FloatPanel; reads the
/// settings whenever it is shown. GUI thread.
class KELMOVIE_EXPORT SaveQualityPanel : public QWidget
{
    Q_OBJECT

public:
    explicit SaveQualityPanel(QWidget *parent = nullptr);
    ~SaveQualityPanel() override;

    /// The recording to export, at the playback speed of the manager. Not owned; may be destroyed before the panel.
    /// Null (initially): no estimate.
    void setPlaybackManager(KelPlaybackTrackManager *manager);
    /// The range to export, in ms of recording time; the whole recording unless both ends are 0 or more.
    void setRange(int startMs, int endMs);
    /// Frames per second of the file, initially 25.
    void setFrameRate(int fps);
    /// Frame size of the file in pixels; empty (initially): as recorded.
    void setFrameSize(const QSize &size);

signals:
    /// The user changed the quality. It is already in gKelMovieConfig; it is never saved.
    void sigConfigUpdated();

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    class Private;
    std::unique_ptr<Private> d;
};
