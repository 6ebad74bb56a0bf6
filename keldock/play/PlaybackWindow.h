#pragma once

#include "play/DirectoryWatch.h"

#include <KelMovie/KelMultiTrackRecorder.h>

#include <QMainWindow>

class MessagePage;
class PlaybackPage;
class QStackedWidget;

/// Plays, trims, restyles and exports one recording. Several of these windows may be open at the same time. GUI thread.
///
/// Keys: Space plays and pauses; Left and Right step by one frame, with Shift by one second; Home and End go to the
/// ends of the trim range, I and O set them to the current frame; + and - change the speed; F toggles full screen,
/// Escape leaves it; Ctrl+E exports, Ctrl+S saves the frame, Ctrl+C copies it.
class PlaybackWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Loads the recording. If it cannot be played, the window says why.
    explicit PlaybackWindow(const QString &recordingDir, QWidget *parent = nullptr);
    ~PlaybackWindow() override;

    QString recordingDir() const { return m_dir; }

    /// The recording was just made: after an export the user is asked whether to close it, which closes the window.
    void setFromRecording(bool on);

signals:
    /// The user wants to make another recording; this window stays open.
    void recordAgainRequested();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void load();
    void createMessagePage();
    void createPlaybackPage();
    void addShortcuts();
    void showMessage(const QString &title, const QString &detail);
    void handleDirectoryLost();
    void handleDirectoryBack();
    void showMetadataNotice();
    bool isPlaybackShown() const;
    void toggleFullScreen();
    void restoreWindowGeometry();

    const QString m_dir;
    KelMultiTrackRecorder m_recorder; // owns the loaded recording
    DirectoryWatch m_watch;
    bool m_isFromRecording = false;
    QStackedWidget *const m_pages;
    MessagePage *m_message = nullptr;
    PlaybackPage *m_playback = nullptr; // null while there is nothing to play
};
