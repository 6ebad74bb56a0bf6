#pragma once

#include <QMainWindow>

#include <memory>

/// One recording: watched, trimmed, restyled and exported. Several may be open at a time.
///
/// Keys: Space plays and pauses, Left and Right step a frame, with Shift a second, Home and End go to the ends of the
/// range, I and O put its ends here, + and - change the speed, F is full screen, Escape ends it; Ctrl+E exports, Ctrl+S
/// saves the picture, Ctrl+C copies it.
class PlaybackWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Loads the recording; one that cannot be shown is told in the window.
    explicit PlaybackWindow(const QString &recordingDir, QWidget *parent = nullptr);
    ~PlaybackWindow() override;

    QString recordingDir() const;

    /// The recording was just made: after an export the user is asked whether to be done with it, which closes the
    /// window.
    void setFromRecording(bool on);

signals:
    /// The user wants to record anew; the window stays.
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
    void showLost();
    void showAgain();
    void showHints();
    void exportRecording();
    void savePicture();
    void copyPicture();
    void setSettingsShown(bool shown);
    void toggleFullScreen();
    void restorePlace();

    class Private;
    std::unique_ptr<Private> d;
};
