#pragma once

#include <QMainWindow>
#include <QModelIndex>

#include <memory>

/// The list of all recordings: open, rename, show in the file manager, delete.
class RecordingsWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// `root` is the folder with the recordings; it need not exist yet.
    explicit RecordingsWindow(const QString &root, QWidget *parent = nullptr);
    /// The same with another program that makes the pictures than this one.
    RecordingsWindow(const QString &root, const QString &program, QWidget *parent);
    ~RecordingsWindow() override;

    /// Reads the folder again. Happens by itself when recordings come or go.
    void refresh();
    /// The recording that is under way, possibly paused; empty for none. It cannot be opened or deleted.
    void setActiveRecording(const QString &dir);

signals:
    void openRequested(const QString &dir);
    void recordRequested();

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void createListPage();
    QWidget *createButtons();
    void createEmptyPage();
    void watchFolder();
    void showPage();
    void updateActions();
    QStringList selectedDirs() const;
    void openSelected();
    void renameSelected();
    void showSelected();
    void deleteSelected();
    void deleteForGood(const QStringList &dirs);

    class Private;
    std::unique_ptr<Private> d;
};
