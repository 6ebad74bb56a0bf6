#pragma once

#include <QWidget>

class FullScreenControls;
class KelPlaybackTrackManager;
class NoticeBar;
class PlaybackCanvas;
class PlaybackStrip;
class Player;
class QKeyEvent;
class RecordingExport;
class SettingsSidebar;

/// The content of the playback window for a recording that can be played: its frames, the strip below, the settings
/// and a notice bar. Exports the recording, and saves and copies frames. GUI thread.
class PlaybackPage : public QWidget
{
    Q_OBJECT

public:
    /// `manager` is not owned and must outlive the page.
    explicit PlaybackPage(KelPlaybackTrackManager *manager, QWidget *parent = nullptr);

    /// The recording was just made: after an export the user may choose to close it.
    void setFromRecording(bool on);
    /// Adapts the layout; the window changes its own state.
    void setFullScreen(bool on);
    void pause();
    void showNotice(const QString &text);
    /// Handles a key without modifiers besides Shift. False if the key has no function here.
    bool handleKey(const QKeyEvent &event);

public slots:
    void exportRecording();
    void saveFrame();
    void copyFrame();

signals:
    void fullScreenToggled();
    void recordAgainRequested();
    void closeRequested();

private:
    void connectCanvas();
    void connectStrip();
    void connectExport();
    void layOut();
    void setSettingsShown(bool shown);
    QString recordingName() const;

    KelPlaybackTrackManager *const m_manager;
    Player *const m_player;
    PlaybackCanvas *const m_canvas;
    PlaybackStrip *const m_strip;
    NoticeBar *const m_notice;
    SettingsSidebar *const m_settings;
    RecordingExport *const m_export;
    FullScreenControls *m_fullScreenControls = nullptr;
    bool m_isFullScreen = false;
};
