#include "library/RecordingsWindow.h"

#include "library/RecordingDelegate.h"
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
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QShortcut>
#include <QStackedWidget>

#include <algorithm>

namespace
{

const QString kGeometryKey = QStringLiteral("RecordingsWindow/geometry");
constexpr QSize kDefaultSize(620, 560);
constexpr int kMaxOpenedUnasked = 5;

} // namespace

RecordingsWindow::RecordingsWindow(const QString &root, QWidget *parent)
    : RecordingsWindow(root, QCoreApplication::applicationFilePath(), parent)
{
}

RecordingsWindow::RecordingsWindow(const QString &root, const QString &program, QWidget *parent)
    : QMainWindow(parent)
    , m_folder(root)
    , m_model(m_folder.root(), program)
    , m_pages(new QStackedWidget(this))
{
    setObjectName(QStringLiteral("RecordingsWindow"));
    setWindowTitle(tr("Recordings"));
    applyDockStyle(this, QStringLiteral("Window"));
    m_filter.setSourceModel(&m_model);
    m_filter.setFilterCaseSensitivity(Qt::CaseInsensitive);
    setCentralWidget(m_pages);
    createListPage();
    createEmptyPage();
    connect(&m_model, &RecordingsModel::refreshed, this, &RecordingsWindow::showPage);
    // Queued because the model refuses a name while the editor closes.
    connect(&m_model, &RecordingsModel::renameFailed, this, &RecordingsWindow::askForOtherName, Qt::QueuedConnection);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &RecordingsWindow::refresh);
    connect(new QShortcut(QKeySequence::Refresh, this), &QShortcut::activated, this, &RecordingsWindow::refresh);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    watchFolder();
    updateActions();
    if (!restoreGeometry(windowStore().value(kGeometryKey).toByteArray()))
        resize(kDefaultSize);
}

RecordingsWindow::~RecordingsWindow()
{
    delete m_pages; // its views use the models, members that are destroyed before the child widgets
}

void RecordingsWindow::createListPage()
{
    m_listPage = new QWidget(this);
    m_listPage->setObjectName(QStringLiteral("ListPage"));
    QBoxLayout *const searchRow = createSearchRow();
    createList();
    m_notice = new NoticeBar(m_listPage);
    auto *const layout = new QVBoxLayout(m_listPage);
    layout->addLayout(searchRow);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_notice);
    layout->addWidget(createButtons());
    m_listPage->setFocusProxy(m_list);
    m_list->setFocus();
    m_pages->addWidget(m_listPage);
}

QBoxLayout *RecordingsWindow::createSearchRow()
{
    m_search = new QLineEdit(m_listPage);
    m_search->setPlaceholderText(tr("Search"));
    m_search->setClearButtonEnabled(true);
    m_search->setAccessibleName(tr("Search by name"));
    m_search->setToolTip(tr("Show only recordings whose name contains this text (Ctrl+F)"));
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, &RecordingsWindow::search);
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, m_search,
            [this] { m_search->setFocus(Qt::ShortcutFocusReason); });
    auto *const record = new QPushButton(tr("&New Recording"), m_listPage);
    record->setObjectName(QStringLiteral("PrimaryButton"));
    record->setToolTip(tr("Record the screen"));
    connect(record, &QPushButton::clicked, this, &RecordingsWindow::recordRequested);
    auto *const row = new QHBoxLayout;
    row->addWidget(m_search, 1);
    row->addWidget(record);
    return row;
}

/// From the search field, Enter opens and the arrows select, as in the list.
bool RecordingsWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QMainWindow::eventFilter(watched, event);
    switch (static_cast<QKeyEvent *>(event)->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        openSelected();
        return true;
    case Qt::Key_Down:
    case Qt::Key_Up:
        m_list->setFocus();
        QCoreApplication::sendEvent(m_list, event);
        return true;
    default:
        return QMainWindow::eventFilter(watched, event);
    }
}

void RecordingsWindow::search(const QString &text)
{
    m_filter.setFilterFixedString(text);
    m_list->setCurrentIndex(m_filter.index(0, 0));
    m_list->scrollToTop();
}

void RecordingsWindow::createList()
{
    m_list = new QListView(m_listPage);
    m_list->setObjectName(QStringLiteral("RecordingsList"));
    m_list->setModel(&m_filter);
    m_list->setItemDelegate(new RecordingDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setMouseTracking(true);
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_list->setAccessibleName(tr("Recordings"));
    connect(m_list, &QListView::activated, this, &RecordingsWindow::openSelected);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &RecordingsWindow::updateActions);
}

/// Each action appears as a button and in the context menu.
QWidget *RecordingsWindow::createButtons()
{
    auto *const row = new QWidget(m_listPage);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const QString &text, const QString &toolTip, const QKeySequence &key,
                         void (RecordingsWindow::*handler)()) {
        auto *const action = new QAction(text, m_list);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, handler);
        m_list->addAction(action);
        auto *const button = new QPushButton(text, row);
        button->setToolTip(toolTip);
        connect(button, &QPushButton::clicked, action, &QAction::trigger);
        connect(action, &QAction::changed, button, [=] { button->setEnabled(action->isEnabled()); });
        layout->addWidget(button);
        return action;
    };
    m_open = add(tr("&Open"), tr("Play the recording (Enter)"), QKeySequence(), &RecordingsWindow::openSelected);
    m_rename = add(tr("&Rename"), tr("Rename the recording (F2)"), QKeySequence(), &RecordingsWindow::renameSelected);
    m_show = add(tr("&Show in Folder"), tr("Show the files of the recording in the file manager"), QKeySequence(),
                 &RecordingsWindow::showSelected);
    layout->addStretch();
    m_delete = add(tr("&Delete"), tr("Move the recording to the trash (Del)"), QKeySequence::Delete,
                   &RecordingsWindow::deleteSelected);
    return row;
}

void RecordingsWindow::createEmptyPage()
{
    m_emptyPage = new MessagePage(KelDockIcon::Glyph::Screen, this);
    m_emptyPage->setObjectName(QStringLiteral("MessagePage"));
    m_emptyPage->setMessage(tr("No recordings yet"), tr("Recordings are saved in %1.").arg(m_folder.root()));
    m_emptyPage->addAction(tr("&Record"), tr("Record the screen"), [this] { emit recordRequested(); });
    m_pages->addWidget(m_emptyPage);
}

void RecordingsWindow::refresh()
{
    watchFolder();
    m_model.refresh();
}

/// Watches the parent as well, which reports the creation of the folder.
void RecordingsWindow::watchFolder()
{
    const QString root = m_folder.root();
    for (const QString &path : {root, QFileInfo(root).path()}) {
        if (!m_watcher.directories().contains(path) && QFileInfo(path).isDir())
            m_watcher.addPath(path);
    }
}

void RecordingsWindow::setActiveRecording(const QString &dir)
{
    m_model.setActiveRecording(dir);
    refresh();
    updateActions();
}

void RecordingsWindow::showPage()
{
    QWidget *const page = m_model.rowCount() > 0 ? m_listPage : static_cast<QWidget *>(m_emptyPage);
    if (page != m_pages->currentWidget()) {
        m_pages->setCurrentWidget(page);
        page->setFocus();
    }
    if (!m_list->currentIndex().isValid())
        m_list->setCurrentIndex(m_filter.index(0, 0));
    updateActions();
}

void RecordingsWindow::updateActions()
{
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    const bool isOne = selected.size() == 1;
    const bool hasActive = std::any_of(selected.begin(), selected.end(), [](const QModelIndex &index) {
        return index.data(RecordingsModel::ActiveRole).toBool();
    });
    m_open->setEnabled(!selected.isEmpty() && !hasActive);
    m_rename->setEnabled(isOne && !hasActive);
    m_show->setEnabled(isOne);
    m_delete->setEnabled(!selected.isEmpty() && !hasActive);
}

QStringList RecordingsWindow::selectedDirs() const
{
    QStringList dirs;
    const QModelIndexList selected = m_list->selectionModel()->selectedIndexes();
    for (const QModelIndex &index : selected)
        dirs.append(index.data(RecordingsModel::DirRole).toString());
    return dirs;
}

void RecordingsWindow::openSelected()
{
    if (!m_open->isEnabled())
        return;
    const QStringList dirs = selectedDirs();
    if (dirs.size() > kMaxOpenedUnasked &&
        KelMsgBox::question(this, tr("Open"), tr("Open %n recording(s), each in its own window?", nullptr, dirs.size()),
                            QMessageBox::Yes | QMessageBox::No, QMessageBox::No) != QMessageBox::Yes)
        return;
    for (const QString &dir : dirs)
        emit openRequested(dir);
}

void RecordingsWindow::renameSelected()
{
    m_list->edit(m_list->currentIndex());
}

/// Opens the editor again with the refused name, which the user may have taken some trouble to type.
void RecordingsWindow::askForOtherName(const QString &dir, const QString &name, const QString &error)
{
    KelMsgBox::warning(this, tr("Rename"), tr("The recording was not renamed."), error);
    const QModelIndexList found =
        m_filter.match(m_filter.index(0, 0), RecordingsModel::DirRole, dir, 1, Qt::MatchExactly);
    if (found.isEmpty())
        return;
    m_list->setCurrentIndex(found.constFirst());
    m_list->edit(found.constFirst());
    if (auto *const editor = m_list->viewport()->findChild<QLineEdit *>()) {
        editor->setText(name);
        editor->selectAll();
    }
}

void RecordingsWindow::showSelected()
{
    openInFileManager(selectedDirs().value(0));
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
        m_notice->showNotice(tr("%n recording(s) moved to the trash.", nullptr, moved));
    if (!kept.isEmpty())
        deletePermanently(kept);
    refresh();
}

void RecordingsWindow::deletePermanently(const QStringList &dirs)
{
    const QString question =
        tr("%n recording(s) cannot be moved to the trash. Delete permanently?", nullptr, dirs.size());
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
    // The watcher does not notice changes inside of recordings.
    if (event->type() == QEvent::ActivationChange && isActiveWindow())
        refresh();
    QMainWindow::changeEvent(event);
}

void RecordingsWindow::closeEvent(QCloseEvent *event)
{
    windowStore().setValue(kGeometryKey, saveGeometry());
    QMainWindow::closeEvent(event);
}
