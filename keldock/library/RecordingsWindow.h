#pragma once

#include <QMainWindow>

#include <memory>

/// The list of all recordings: open, rename, show in the file manager, delete.
class RecordingsWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// `root` is the folder with the recordings; it need not exist yet.
    explicit RecordingsWindow(const QString &root, QWidget *parent = nullptr);
    ~RecordingsWindow() override;

    /// Reads the folder again. Happens by itself when something in it changes.
    void refresh();
    /// The recording that is under way, possibly paused; empty for none. It is shown as such and cannot be opened.
    void setActiveRecording(const QString &dir);

signals:
    void openRequested(const QString &dir);
    void recordRequested();

private:
    class Private;
    std::unique_ptr<Private> d;
};
