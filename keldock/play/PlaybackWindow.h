#pragma once

#include <QMainWindow>

#include <memory>

/// One recording: watched, trimmed, restyled and exported. Several may be open at a time.
class PlaybackWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Loads the recording; one that cannot be shown is told in the window.
    explicit PlaybackWindow(const QString &recordingDir, QWidget *parent = nullptr);
    ~PlaybackWindow() override;

    QString recordingDir() const;

signals:
    /// The user wants to record anew; the window stays.
    void recordAgainRequested();

private:
    class Private;
    std::unique_ptr<Private> d;
};
