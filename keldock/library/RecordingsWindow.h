#pragma once

#include "library/RecordingsFolder.h"
#include "library/RecordingsModel.h"

#include <QFileSystemWatcher>
#include <QKeySequence>
#include <QMainWindow>
#include <QSortFilterProxyModel>
#include <QStringList>

class MessagePage;
class NoticeBar;
class QAction;
class QBoxLayout;
class QLineEdit;
class QListView;
class QStackedWidget;

/// Lists all recordings, and opens, renames, shows (in the file manager) and deletes them. GUI thread.
class RecordingsWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// `root` is the folder of recordings; it need not exist yet.
    explicit RecordingsWindow(const QString &root, QWidget *parent = nullptr);
    /// With another program than this one to compose the frames for the thumbnails.
    RecordingsWindow(const QString &root, const QString &program, QWidget *parent);
    ~RecordingsWindow() override;

    /// Reads the folder again. Happens automatically when recordings are added or removed.
    void refresh();
    /// The recording in progress, possibly paused; empty if there is none. It cannot be opened, renamed or deleted.
    void setActiveRecording(const QString &dir);

signals:
    void openRequested(const QString &dir);
    void recordRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void createListPage();
    QBoxLayout *createSearchRow();
    void createList();
    QWidget *createButtons();
    void createEmptyPage();
    void search(const QString &text);
    void watchFolder();
    void showPage();
    void updateActions();
    QStringList selectedDirs() const;
    void openSelected();
    void renameSelected();
    void askForOtherName(const QString &dir, const QString &name, const QString &error);
    void showSelected();
    void deleteSelected();
    void deletePermanently(const QStringList &dirs);

    const RecordingsFolder m_folder;
    RecordingsModel m_model;
    QSortFilterProxyModel m_filter;
    QFileSystemWatcher m_watcher;
    QStackedWidget *const m_pages;
    QWidget *m_listPage = nullptr;
    MessagePage *m_emptyPage = nullptr;
    QLineEdit *m_search = nullptr;
    QListView *m_list = nullptr;
    NoticeBar *m_notice = nullptr;
    QAction *m_open = nullptr;
    QAction *m_rename = nullptr;
    QAction *m_show = nullptr;
    QAction *m_delete = nullptr;
};
