#include "library/RecordingsWindow.h"

#include "library/RecordingDelegate.h"
#include "library/RecordingsFolder.h"
#include "library/RecordingsModel.h"
#include "notification/KelMsgBox.h"
#include "widgets/DockStyle.h"
#include "widgets/FileManager.h"
#include "widgets/MessagePage.h"
#include "widgets/NoticeBar.h"
#include "widgets/WindowStore.h"

#include <QAction>
#include <QBoxLayout>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QShortcut>
#include <QSortFilterProxyModel>
#include <QStackedWidget>

#include <algorithm>

namespace
{

const QString kGeometryKey = QStringLiteral("RecordingsWindow/geometry");
constexpr QSize kFirstSize(620, 560);

} // namespace

class RecordingsWindow::Private
{
public:
    Private(const QString &root, const QString &program)
        : folder(root)
        , model(folder.root(), program)
    {
    }

    const RecordingsFolder folder;
    RecordingsModel model;
    QSortFilterProxyModel filter;
    QFileSystemWatcher watcher;
    QStackedWidget *pages = nullptr;
    QWidget *listPage = nullptr;
    MessagePage *emptyPage = nullptr;
    QLineEdit *search = nullptr;
    QListView *list = nullptr;
    NoticeBar *notice = nullptr;
    QAction *open = nullptr;
    QAction *rename = nullptr;
    QAction *show = nullptr;
    QAction *remove = nullptr;
};

RecordingsWindow::RecordingsWindow(const QString &root, QWidget *parent)
    : RecordingsWindow(root, QCoreApplication::applicationFilePath(), parent)
{
}

RecordingsWindow::RecordingsWindow(const QString &root, const QString &program, QWidget *parent)
    : QMainWindow(parent)
    , d(std::make_unique<Private>(root, program))
{
    setObjectName(QStringLiteral("RecordingsWindow"));
    setWindowTitle(tr("Recordings"));
    applyDockStyle(this, QStringLiteral("Window"));
    d->filter.setSourceModel(&d->model);
    d->filter.setFilterCaseSensitivity(Qt::CaseInsensitive);
    d->pages = new QStackedWidget(this);
    setCentralWidget(d->pages);
    createListPage();
    createEmptyPage();
    connect(&d->model, &RecordingsModel::refreshed, this, &RecordingsWindow::showPage);
    connect(&d->model, &RecordingsModel::renameFailed, this,
            [this](const QString &error) { KelMsgBox::warning(this, tr("Rename"), tr("Not renamed."), error); });
    connect(&d->watcher, &QFileSystemWatcher::directoryChanged, this, &RecordingsWindow::refresh);
    connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, this, &RecordingsWindow::refresh);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    watchFolder();
    updateActions();
    if (!restoreGeometry(windowStore().value(kGeometryKey).toByteArray()))
        resize(kFirstSize);
}

RecordingsWindow::~RecordingsWindow()
{
    delete d->pages; // its views look at the models
}

void RecordingsWindow::createListPage()
{
    d->listPage = new QWidget(this);
    d->listPage->setObjectName(QStringLiteral("ListPage"));
    d->search = new QLineEdit(d->listPage);
    d->search->setPlaceholderText(tr("Search"));
    d->search->setClearButtonEnabled(true);
    d->search->setAccessibleName(tr("Search by name"));
    d->search->setToolTip(tr("Shows only recordings whose names contain this (Ctrl+F)"));
    connect(d->search, &QLineEdit::textChanged, &d->filter, &QSortFilterProxyModel::setFilterFixedString);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, d->search,
            [this] { d->search->setFocus(Qt::ShortcutFocusReason); });
    auto *const record = new QPushButton(tr("&New Recording"), d->listPage);
    record->setObjectName(QStringLiteral("PrimaryButton"));
    record->setToolTip(tr("Records the screen"));
    connect(record, &QPushButton::clicked, this, &RecordingsWindow::recordRequested);
    auto *const top = new QHBoxLayout;
    top->addWidget(d->search, 1);
    top->addWidget(record);

    d->list = new QListView(d->listPage);
    d->list->setObjectName(QStringLiteral("RecordingsList"));
    d->list->setModel(&d->filter);
    d->list->setItemDelegate(new RecordingDelegate(d->list));
    d->list->setUniformItemSizes(true);
    d->list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    d->list->setEditTriggers(QAbstractItemView::EditKeyPressed);
    d->list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    d->list->setMouseTracking(true);
    d->list->setContextMenuPolicy(Qt::ActionsContextMenu);
    d->list->setAccessibleName(tr("Recordings"));
    connect(d->list, &QListView::activated, this, &RecordingsWindow::openSelected);
    connect(d->list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &RecordingsWindow::updateActions);

    d->notice = new NoticeBar(d->listPage);
    auto *const layout = new QVBoxLayout(d->listPage);
    layout->addLayout(top);
    layout->addWidget(d->list, 1);
    layout->addWidget(d->notice);
    layout->addWidget(createButtons());
    d->listPage->setFocusProxy(d->list);
    d->list->setFocus();
    d->pages->addWidget(d->listPage);
}

/// One action each, for button, context menu and key.
QWidget *RecordingsWindow::createButtons()
{
    auto *const row = new QWidget(d->listPage);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const QString &text, const QString &toolTip, const QKeySequence &key,
                         void (RecordingsWindow::*handler)()) {
        auto *const action = new QAction(text, d->list);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, handler);
        d->list->addAction(action);
        auto *const button = new QPushButton(text, row);
        button->setToolTip(toolTip);
        connect(button, &QPushButton::clicked, action, &QAction::trigger);
        connect(action, &QAction::changed, button, [=] { button->setEnabled(action->isEnabled()); });
        layout->addWidget(button);
        return action;
    };
    d->open = add(tr("&Open"), tr("Plays the recording (Enter)"), QKeySequence(), &RecordingsWindow::openSelected);
    d->rename = add(tr("&Rename"), tr("Gives the recording another name (F2)"), QKeySequence(),
                    &RecordingsWindow::renameSelected);
    d->show = add(tr("&Show in Folder"), tr("Shows the files of the recording in the file manager"), QKeySequence(),
                  &RecordingsWindow::showSelected);
    layout->addStretch();
    d->remove = add(tr("&Delete"), tr("Moves the recording to the trash (Del)"), QKeySequence::Delete,
                    &RecordingsWindow::deleteSelected);
    return row;
}

void RecordingsWindow::createEmptyPage()
{
    d->emptyPage = new MessagePage(KelDockIcon::Glyph::Screen, this);
    d->emptyPage->setObjectName(QStringLiteral("MessagePage"));
    d->emptyPage->setMessage(tr("No recordings yet"), tr("Recordings are kept in %1.").arg(d->folder.root()));
    d->emptyPage->addAction(tr("&Record"), tr("Records the screen"), [this] { emit recordRequested(); });
    d->pages->addWidget(d->emptyPage);
}

void RecordingsWindow::refresh()
{
    watchFolder();
    d->model.refresh();
}

/// A folder that does not exist yet is noticed by its parent's change.
void RecordingsWindow::watchFolder()
{
    const QString root = d->folder.root();
    for (const QString &path : {root, QFileInfo(root).path()}) {
        if (!d->watcher.directories().contains(path) && QFileInfo(path).isDir())
            d->watcher.addPath(path);
    }
}

void RecordingsWindow::setActiveRecording(const QString &dir)
{
    d->model.setActiveRecording(dir);
    refresh();
    updateActions();
}

void RecordingsWindow::showPage()
{
    QWidget *const page = d->model.rowCount() > 0 ? d->listPage : static_cast<QWidget *>(d->emptyPage);
    if (page != d->pages->currentWidget()) {
        d->pages->setCurrentWidget(page);
        page->setFocus();
    }
    if (!d->list->currentIndex().isValid())
        d->list->setCurrentIndex(d->filter.index(0, 0));
    updateActions();
}

void RecordingsWindow::updateActions()
{
    const QModelIndexList selected = d->list->selectionModel()->selectedIndexes();
    const bool isOne = selected.size() == 1;
    const bool hasActive = std::any_of(selected.begin(), selected.end(), [](const QModelIndex &index) {
        return index.data(RecordingsModel::ActiveRole).toBool();
    });
    d->open->setEnabled(!selected.isEmpty() && !hasActive);
    d->rename->setEnabled(isOne && !hasActive);
    d->show->setEnabled(isOne);
    d->remove->setEnabled(!selected.isEmpty() && !hasActive);
}

QStringList RecordingsWindow::selectedDirs() const
{
    QStringList dirs;
    const QModelIndexList selected = d->list->selectionModel()->selectedIndexes();
    for (const QModelIndex &index : selected)
        dirs.append(index.data(RecordingsModel::DirRole).toString());
    return dirs;
}

void RecordingsWindow::openSelected()
{
    if (!d->open->isEnabled())
        return;
    const QStringList dirs = selectedDirs();
    for (const QString &dir : dirs)
        emit openRequested(dir);
}

void RecordingsWindow::renameSelected()
{
    d->list->edit(d->list->currentIndex());
}

void RecordingsWindow::showSelected()
{
    showInFileManager(selectedDirs().value(0));
}

void RecordingsWindow::deleteSelected()
{
    QStringList kept;
    const QStringList dirs = selectedDirs();
    for (const QString &dir : dirs) {
        if (!RecordingsFolder::moveToTrash(dir))
            kept.append(dir);
    }
    const int moved = dirs.size() - kept.size();
    if (moved > 0)
        d->notice->tell(tr("%n recording(s) moved to the trash.", nullptr, moved));
    if (!kept.isEmpty())
        deleteForGood(kept);
    refresh();
}

void RecordingsWindow::deleteForGood(const QStringList &dirs)
{
    const QString question = tr("%n recording(s) cannot be moved to the trash. Delete for good?", nullptr, dirs.size());
    if (KelMsgBox::question(this, tr("Delete"), question, QMessageBox::Yes | QMessageBox::No, QMessageBox::No) !=
        QMessageBox::Yes)
        return;
    for (const QString &dir : dirs) {
        QString error;
        if (!RecordingsFolder::remove(dir, &error))
            KelMsgBox::warning(this, tr("Delete"), tr("%1 was not deleted.").arg(QFileInfo(dir).fileName()), error);
    }
}

void RecordingsWindow::changeEvent(QEvent *event)
{
    // What happened inside of a recording meanwhile is not seen by the watcher.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refresh();
    QMainWindow::changeEvent(event);
}

void RecordingsWindow::closeEvent(QCloseEvent *event)
{
    windowStore().setValue(kGeometryKey, saveGeometry());
    QMainWindow::closeEvent(event);
}
